# SPDX-FileCopyrightText: 2026 The trelvik developers
#
# SPDX-License-Identifier: GPL-2.0-or-later

# nimb_add_test(<name> SOURCES <files...> LIBS <targets...> [ENGINE] [THREADS] [RUSSIAN])
#
# Every test runs on the offscreen platform with a private HOME/XDG tree so that no
# test touches the user's settings. ENGINE marks tests of the GUI-free engine and
# THREADS interface tests that drive a loader thread; the ThreadSanitizer run selects
# both by their labels. RUSSIAN registers a second
# run of the same binary under a Russian system locale (the language rule is
# decided once per process, so each language needs a process of its own).
function(nimb_add_test name)
    cmake_parse_arguments(T "ENGINE;THREADS;RUSSIAN" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${T_SOURCES})
    target_link_libraries(${name} PRIVATE Qt5::Test ${T_LIBS})
    target_compile_definitions(${name} PRIVATE
        NIMB_TEST_DATA_DIR="${CMAKE_SOURCE_DIR}/tests/data"
        NIMB_DEMO_DIR="${CMAKE_SOURCE_DIR}/data/demo")
    set(labels unit)
    if(T_ENGINE)
        list(APPEND labels engine)
    endif()
    if(T_THREADS)
        list(APPEND labels threads)
    endif()
    set(env
        "QT_QPA_PLATFORM=offscreen"
        "LC_ALL=en_US.UTF-8" "LANG=en_US.UTF-8" "LANGUAGE=en"
        "XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/test-home/${name}/config"
        "XDG_DATA_HOME=${CMAKE_BINARY_DIR}/test-home/${name}/data"
        "XDG_CACHE_HOME=${CMAKE_BINARY_DIR}/test-home/${name}/cache"
        "HOME=${CMAKE_BINARY_DIR}/test-home/${name}"
        "TSAN_OPTIONS=halt_on_error=1 second_deadlock_stack=1 suppressions=${CMAKE_SOURCE_DIR}/tests/tsan.supp"
        "ASAN_OPTIONS=detect_leaks=1:abort_on_error=1"
        "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0"
        "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1")
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES LABELS "${labels}" ENVIRONMENT "${env}" TIMEOUT 600)
    if(T_RUSSIAN)
        set(ru_env ${env})
        list(TRANSFORM ru_env REPLACE "en_US" "ru_RU")
        list(TRANSFORM ru_env REPLACE "LANGUAGE=en" "LANGUAGE=ru")
        add_test(NAME ${name}_ru COMMAND ${name})
        set_tests_properties(${name}_ru PROPERTIES LABELS "${labels};russian" ENVIRONMENT "${ru_env}" TIMEOUT 600)
    endif()
endfunction()
