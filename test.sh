#!/usr/bin/env bash
# Builds everything and runs the tests. Arguments go to ctest, such as: ./test.sh -R HelperXPC
source "$(dirname "${BASH_SOURCE[0]}")/scripts/common.sh"

install_packages build desktop test

export LC_ALL=C.UTF-8
cd "$root"
cmake --preset release -DBUILD_TESTING=ON -DQUORVALE_WERROR="${QUORVALE_WERROR:-OFF}"
cmake --build --preset release
exec ctest --preset release --parallel "$(nproc)" "$@"
