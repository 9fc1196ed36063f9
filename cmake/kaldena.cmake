# kaldena_library(name sources...): one static library per layer, rooted at src/.
function(kaldena_library name)
  add_library(kaldena_${name} STATIC ${ARGN})
  target_include_directories(kaldena_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
endfunction()

# kaldena_test(layer name [libraries...]): builds tests/<layer>/<name>_test.cpp and registers it.
function(kaldena_test layer name)
  set(target ${layer}_${name}_test)
  add_executable(${target} ${PROJECT_SOURCE_DIR}/tests/${layer}/${name}_test.cpp)
  target_link_libraries(${target} PRIVATE kaldena_${layer} ${ARGN} kaldena_test_support
                        GTest::gtest_main)
  add_test(NAME ${layer}.${name} COMMAND ${target})
  set_tests_properties(${layer}.${name} PROPERTIES
    ENVIRONMENT "KALDENA_TEST_DATA=${PROJECT_SOURCE_DIR}/tests/data;KALDENA_SHARED=${PROJECT_SOURCE_DIR}/../shared")
endfunction()
