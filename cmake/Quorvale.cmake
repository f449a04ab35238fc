# Warnings and hardening that every target of this tree shares.
add_library(quorvale_options INTERFACE)
target_include_directories(quorvale_options INTERFACE ${PROJECT_SOURCE_DIR}/QuorvaleHelper)
target_compile_options(quorvale_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Wimplicit-fallthrough -fstack-protector-strong
  # g++ 12 takes the alternatives of an inlined std::variant for uninitialized, and what operator+ puts before a
  # std::string for overlapping.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized -Wno-restrict>
  $<$<BOOL:${QUORVALE_WERROR}>:-Werror>)
target_compile_definitions(quorvale_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH
  $<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
if(QUORVALE_SANITIZE)
  target_compile_options(quorvale_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(quorvale_options INTERFACE -fsanitize=address,undefined)
endif()
if(QUORVALE_FUZZ)
  target_compile_options(quorvale_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# quorvale_library(name [SMALL] SOURCES file... [LINKS target...] [PRIVATE_LINKS target...])
# A static library. LINKS are seen by those who include its headers, PRIVATE_LINKS are not. One that is SMALL runs at the
# pace of a hand, and is compiled for size: its code stays in memory.
function(quorvale_library name)
  cmake_parse_arguments(arg "SMALL" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  if(arg_SMALL)
    target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-Os>)
  endif()
  target_link_libraries(${name} PUBLIC quorvale_options ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS})
endfunction()

# quorvale_test(name SOURCES file... LINKS target... [PLAIN | WIDGETS] [SERIAL] [TIMEOUT seconds] [DEPENDS target...])
# One GoogleTest program, one CTest entry for each of its tests. Its main() runs a QCoreApplication, with
# WIDGETS a QApplication on Qt's offscreen platform. One that is PLAIN has nothing of the toolkit, so that the thread
# sanitizer understands all of it; the target plain_tests builds these. One that is SERIAL makes or forbids load: it has
# the machine to itself.
function(quorvale_test name)
  cmake_parse_arguments(arg "PLAIN;SERIAL;WIDGETS" "TIMEOUT" "SOURCES;LINKS;DEPENDS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LINKS} GTest::gmock)
  if(arg_PLAIN)
    target_link_libraries(${name} PRIVATE quorvale_plain_support GTest::gmock_main)
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    add_dependencies(plain_tests ${name})
  elseif(arg_WIDGETS)
    target_link_libraries(${name} PRIVATE quorvale_test_support quorvale_widgets_main)
  else()
    target_link_libraries(${name} PRIVATE quorvale_test_support quorvale_core_main)
  endif()
  if(arg_DEPENDS)
    add_dependencies(${name} ${arg_DEPENDS})
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 60)
  endif()
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT ${arg_TIMEOUT} RUN_SERIAL ${arg_SERIAL} LABELS "$<$<BOOL:${arg_PLAIN}>:plain>")
endfunction()
