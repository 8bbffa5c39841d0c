# varo_add_library(NAME SOURCES ... DEPS ...)
# One static library per subsystem folder; the folder's parent is the include root,
# so code includes "core/record_calendar.hpp".
function(varo_add_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_DEPS})
endfunction()

# varo_add_test(NAME SOURCES ... DEPS ... [PROPERTIES ...])
# One test executable per library, discovered test by test. Tests run from the build tree
# and find their golden files through VARO_TEST_DATA. PROPERTIES are further test properties.
function(varo_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS;PROPERTIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPS} GTest::gtest GTest::gtest_main GTest::gmock)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE
    VARO_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
    VARO_BINARY_DIR="${PROJECT_BINARY_DIR}")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" ${ARG_PROPERTIES})
endfunction()
