# Build rules that every folder shares: language level, warnings, output places, target kinds.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
# moc of Qt 6.4 cannot read <concepts>; it needs nothing from it. This is that header's include guard.
set(CMAKE_AUTOMOC_MOC_OPTIONS -D_GLIBCXX_CONCEPTS=1)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

find_program(CCACHE ccache)
if(CCACHE)
  # What is needed for precompiled headers: see quill_precompiled_headers.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
    CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_SLOPPINESS=pch_defines,time_macros CCACHE_PCH_EXTSUM=1 ${CCACHE})
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # This compiler warns wrongly about a literal joined with a std::string (GCC bug 105651), and about texts of
  # unknown length once headers are precompiled.
  add_compile_options(-Wno-restrict -Wno-stringop-overflow)
endif()
add_compile_definitions(QT_NO_KEYWORDS QT_NO_CAST_FROM_BYTEARRAY)
include_directories(${CMAKE_SOURCE_DIR})

if(QUILL_SANITIZE)
  add_compile_options(-fsanitize=${QUILL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QUILL_SANITIZE})
endif()
if(QUILL_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# quill_folders(<folder>...): adds the folders in this order.
function(quill_folders)
  foreach(folder IN LISTS ARGN)
    add_subdirectory(${folder})
  endforeach()
endfunction()

# Most of the time of a build goes into reading the headers of Qt, of the standard library and of GoogleTest, so
# they are read once for each group of targets. Sources name what they include all the same: builds with other
# compilers and with QUILL_PRECOMPILED=OFF have no precompiled headers.
option(QUILL_PRECOMPILED "Precompile the headers of libraries (GCC only)" ON)
function(quill_precompiled_headers name)
  if(NOT QUILL_PRECOMPILED OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    return()
  endif()
  set(header ${CMAKE_SOURCE_DIR}/cmake/precompiled_${name}.h)
  set(target precompiled_${name})
  file(WRITE ${CMAKE_BINARY_DIR}/${target}.cpp "")
  add_library(${target} OBJECT ${CMAKE_BINARY_DIR}/${target}.cpp)
  set_target_properties(${target} PROPERTIES AUTOMOC OFF AUTOUIC OFF)
  target_link_libraries(${target} PRIVATE ${ARGN})
  target_precompile_headers(${target} PRIVATE ${header})
  # By this sum the compiler cache knows the header in any checkout, though its bytes differ.
  file(SHA256 ${header} sum)
  file(WRITE ${CMAKE_BINARY_DIR}/CMakeFiles/${target}.dir/cmake_pch.hxx.gch.sum
    "${sum} ${CMAKE_CXX_COMPILER_VERSION} ${Qt6_VERSION} ${CMAKE_BUILD_TYPE} ${QUILL_SANITIZE}")
  set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
endfunction()

# quill_precompile(<target> <name>): the target reads what cmake/precompiled_<name>.h includes precompiled.
function(quill_precompile target name)
  if(TARGET precompiled_${name})
    target_precompile_headers(${target} REUSE_FROM precompiled_${name})
  endif()
endfunction()

# quill_library(<target> <SHARED|STATIC> SOURCES ... DEPENDS ...)
# One folder, one target. DEPENDS is the whole list of folders that it may include from.
# Host folders are SHARED, because the program and the module share their state; module folders
# are STATIC and end up together in the one module file.
function(quill_library target kind)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_library(${target} ${kind} ${ARG_SOURCES})
  target_link_libraries(${target} PUBLIC ${ARG_DEPENDS})
  set(headers core)
  if("Qt6::Widgets" IN_LIST ARG_DEPENDS OR "host_acui" IN_LIST ARG_DEPENDS)
    set(headers widgets)
  endif()
  quill_precompile(${target} ${headers})
endfunction()

# What every test sees, whoever starts it; the test programs' own main() sets the same (tests/support).
set(QUILL_TEST_ENVIRONMENT QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 TZ=UTC
  FONTCONFIG_FILE=${CMAKE_SOURCE_DIR}/tests/support/fonts.conf
  LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/leaks.supp:print_suppressions=0
  TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/races.supp:print_suppressions=0)

# Tests, benchmarks and fuzz targets are built on demand: the targets "tests", "benchmarks" and "fuzzers".
add_custom_target(tests)
add_custom_target(benchmarks)
add_custom_target(fuzzers)
function(quill_on_demand group target folder)
  set_target_properties(${target} PROPERTIES
    EXCLUDE_FROM_ALL ON RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${folder})
  add_dependencies(${group} ${target})
endfunction()

# quill_test(<target> [GUI] SOURCES ... DEPENDS ...): one GoogleTest program, run offscreen.
# With GUI it has a QApplication, otherwise a QCoreApplication.
function(quill_test target)
  cmake_parse_arguments(ARG "GUI" "" "SOURCES;DEPENDS" ${ARGN})
  set(main tests_main)
  if(ARG_GUI)
    set(main tests_main_gui)
  endif()
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE ${ARG_DEPENDS} ${main} tests_support GTest::gmock)
  quill_precompile(${target} tests)
  # Tests spend their time in what they test: building them fast matters more than running them fast.
  target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O1>)
  if(NOT TARGET precompiled_tests)
    # Part of the precompiled headers: every test source shows strings alike.
    target_compile_options(${target} PRIVATE -include ${CMAKE_SOURCE_DIR}/tests/support/print.h)
  endif()
  quill_on_demand(tests ${target} tests)
  add_test(NAME ${target} COMMAND ${target} --gtest_output=xml:${CMAKE_BINARY_DIR}/tests/${target}.xml)
  set_tests_properties(${target} PROPERTIES TIMEOUT 600 ENVIRONMENT "${QUILL_TEST_ENVIRONMENT}")
endfunction()

# quill_script_test(<name> <script>): one test written in Python (.py) or Bash, counted as one case.
# It finds the program in $QUILLNOTE, the repository in $QUILL_ROOT, and may write into the folder that
# it is started in, which is empty and holds the settings of its runs.
# Python is the system's own first, which finds the packages that tools/packages.txt names.
find_program(QUILL_PYTHON python3 HINTS /usr/bin REQUIRED)
function(quill_script_test name script)
  get_filename_component(path ${script} ABSOLUTE)
  set(interpreter bash)
  if(script MATCHES "\\.py$")
    set(interpreter ${QUILL_PYTHON})
  endif()
  set(folder ${CMAKE_BINARY_DIR}/tests/${name}.dir)
  add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/tests/support/in_empty_folder ${folder}
    ${interpreter} ${path})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600 ENVIRONMENT
    "${QUILL_TEST_ENVIRONMENT};QUILLNOTE=${CMAKE_BINARY_DIR}/bin/quillnote;QUILL_ROOT=${CMAKE_SOURCE_DIR}")
endfunction()

# quill_bench(<target> SOURCES ... DEPENDS ...): one Google Benchmark program, one claim about speed.
function(quill_bench target)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE ${ARG_DEPENDS} benchmark::benchmark)
  quill_on_demand(benchmarks ${target} bench)
endfunction()

# quill_fuzz(<target> SOURCES ... DEPENDS ... CORPUS <folder>...): one libFuzzer program, one parser.
# As a test it replays the corpus, which is the same that the parser's tests read.
function(quill_fuzz target)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;CORPUS" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE ${ARG_DEPENDS})
  target_link_options(${target} PRIVATE -fsanitize=fuzzer)
  quill_on_demand(fuzzers ${target} fuzz)
  set(corpus)
  foreach(folder IN LISTS ARG_CORPUS)
    list(APPEND corpus ${CMAKE_SOURCE_DIR}/${folder})
  endforeach()
  list(JOIN corpus "\n" lines)
  file(WRITE ${CMAKE_BINARY_DIR}/fuzz/${target}.corpus "${lines}\n")
  add_test(NAME ${target} COMMAND ${target} -runs=0 ${corpus})
  set_tests_properties(${target} PROPERTIES TIMEOUT 600 ENVIRONMENT "${QUILL_TEST_ENVIRONMENT}")
endfunction()
