#include "app/QuorvaleHelperApp.hpp"

int main(int argc, char** argv) {
    quorvale::app::QuorvaleHelperApp::main(argc, argv);
}
