# SPDX-FileCopyrightText: 2026 The trelvik developers
#
# SPDX-License-Identifier: GPL-2.0-or-later

# NIMB_FUZZ=ON builds the libFuzzer harnesses of tests/fuzz (target "fuzzers"). The
# whole tree is then compiled with coverage feedback, AddressSanitizer and UBSan, so
# that the fuzzer sees into the engine; Qt itself stays uninstrumented. Needs clang:
#   CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DNIMB_FUZZ=ON
option(NIMB_FUZZ "Build the libFuzzer harnesses (clang only)" OFF)
if(NIMB_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "NIMB_FUZZ needs clang (configure with CC=clang CXX=clang++)")
    endif()
    if(SANITIZE)
        message(FATAL_ERROR "NIMB_FUZZ brings its own sanitizers; leave SANITIZE empty")
    endif()
    message(STATUS "Fuzzing build: -fsanitize=fuzzer-no-link,address,undefined")
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined
                        -fno-omit-frame-pointer -g)
    add_link_options(-fsanitize=address,undefined)
endif()
