# Warnings, sanitizers and names for our targets: one function per kind, nothing set globally.

function(orvo_common target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                                           -Wcast-align)
  if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # A source that is read by another one is no header, and may keep its names to itself.
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wno-subobject-linkage>)
  endif()
  if(ORVO_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(ORVO_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${ORVO_INSTRUMENT} -fno-sanitize-recover=all
                                             -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${ORVO_SANITIZE})
  endif()
  if(ORVO_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage -fprofile-abs-path)
    target_link_options(${target} PRIVATE --coverage)
  endif()
  target_compile_definitions(${target} PRIVATE QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS)
endfunction()

# What nearly every file includes, parsed once: a build from nothing takes less than half the time. Not where a compiler
# cache does better, so that a file which forgets one of these includes is found by those who have one.
if(CCACHE)
  set(precompile OFF)
else()
  set(precompile ON)
endif()
option(ORVO_PCH "Precompile the headers of the libraries in use" ${precompile})
# Where a target's macros do not fit them, the compiler reads the headers themselves.
set(CMAKE_PCH_WARN_INVALID OFF)
function(orvo_precompiled kind)
  if(NOT ORVO_PCH)
    return()
  endif()
  set(carrier ${CMAKE_BINARY_DIR}/precompiled_${kind}.cpp)
  file(WRITE ${carrier} "")
  add_library(orvo_precompiled_${kind} OBJECT EXCLUDE_FROM_ALL ${carrier})
  orvo_common(orvo_precompiled_${kind})
  cmake_parse_arguments(P "" "" "HEADERS;LIBS" ${ARGN})
  target_link_libraries(orvo_precompiled_${kind} PRIVATE ${P_LIBS})
  target_precompile_headers(orvo_precompiled_${kind} PRIVATE ${P_HEADERS})
  set_target_properties(orvo_precompiled_${kind} PROPERTIES AUTOMOC OFF)
  target_compile_options(orvo_precompiled_${kind} PRIVATE -pthread)
endfunction()
function(orvo_use_precompiled target kind)
  if(TARGET orvo_precompiled_${kind})
    target_precompile_headers(${target} REUSE_FROM orvo_precompiled_${kind})
    # They fit only where the same macros are defined: those of threads, and in tests those of the network.
    target_compile_options(${target} PRIVATE -pthread)
    if(kind STREQUAL "test")
      target_link_libraries(${target} PRIVATE Qt5::Network)
    endif()
  endif()
endfunction()

# A shared library of the platform. `name` is the file's stem, `alias` the target other parts link to.
function(orvo_platform_library name alias)
  add_library(${name} SHARED ${ARGN})
  add_library(Orvo::${alias} ALIAS ${name})
  orvo_common(${name})
  orvo_use_precompiled(${name} code)
  string(TOUPPER ${name} stem)
  generate_export_header(${name} EXPORT_FILE_NAME ${name}_export.h EXPORT_MACRO_NAME ${stem}_EXPORT)
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_CURRENT_BINARY_DIR})
  # clang has its sanitizers' runtimes in the program alone.
  if(NOT (ORVO_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES "Clang"))
    target_link_options(${name} PRIVATE -Wl,--no-undefined)
  endif()
  install(TARGETS ${name} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/orvo)
endfunction()

# A module that the host loads: an object library with all its classes, which the unit tests link as well, and the
# shared library made of it, whose only visible symbol is worker_create.
function(orvo_module name)
  add_library(${name}_objects OBJECT ${ARGN})
  # Several modules in one program, as the fuzz targets have them, leave it out.
  set_source_files_properties(worker_create.cpp PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  add_library(Orvo::${name} ALIAS ${name}_objects)
  orvo_common(${name}_objects)
  orvo_use_precompiled(${name}_objects code)
  target_include_directories(${name}_objects PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  add_library(${name} MODULE)
  orvo_common(${name})
  target_link_libraries(${name} PRIVATE ${name}_objects)
  target_link_options(${name} PRIVATE -Wl,--version-script=${CMAKE_SOURCE_DIR}/cmake/worker_create.map)
  # ASan needs its runtime's symbols left open in a library that is loaded later.
  if(NOT ORVO_SANITIZE)
    target_link_options(${name} PRIVATE -Wl,--no-undefined)
  endif()
  set_target_properties(${name} PROPERTIES LINK_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/worker_create.map)
  install(TARGETS ${name} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/orvo)
endfunction()

# One test program per file group and one ctest entry per program: starting a process per case costs more than the
# case.
function(orvo_test name)
  cmake_parse_arguments(T "" "TIMEOUT" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  orvo_common(${name})
  orvo_use_precompiled(${name} test)
  target_link_libraries(${name} PRIVATE ${T_LIBS} GTest::gtest Qt5::Test Orvo::testsupport)
  add_test(NAME ${name} COMMAND ${name})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 120)
  endif()
  if(ORVO_SANITIZE)
    math(EXPR T_TIMEOUT "3 * ${T_TIMEOUT}")
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${T_TIMEOUT})
  # Every store that a test makes is synced; in memory-backed storage that costs nothing. What must outlive a kill is
  # outlived there too: only a power cut would tell the difference.
  if(IS_DIRECTORY /dev/shm)
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT TMPDIR=/dev/shm)
  endif()
  if(ORVO_SANITIZE)
    # Into files, so that none is lost: a test may not look at how a program ends that it has started.
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/reports)
    set(options log_path=${CMAKE_BINARY_DIR}/reports/report:print_stacktrace=1)
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT ASAN_OPTIONS=detect_leaks=1:${options} UBSAN_OPTIONS=${options}
      TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/tsan.supp:${options})
  endif()
endfunction()
