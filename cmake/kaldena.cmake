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

# kaldena_require_no_qt(targets...): fails the configuration when any of the targets links Qt,
# directly or through the libraries it links.
function(kaldena_require_no_qt)
  set(pending ${ARGN})
  set(seen "")
  while(pending)
    list(POP_FRONT pending target)
    if(NOT TARGET ${target} OR target IN_LIST seen)
      continue()
    endif()
    list(APPEND seen ${target})
    get_target_property(libraries ${target} LINK_LIBRARIES)
    get_target_property(interface ${target} INTERFACE_LINK_LIBRARIES)
    foreach(library IN LISTS libraries interface)
      if(library MATCHES "Qt[0-9]*::|(^|[/_-])[Qq]t[0-9]")
        message(FATAL_ERROR "${target} links ${library}: the core must not depend on Qt")
      endif()
      if(library MATCHES "^kaldena_")
        list(APPEND pending ${library})
      endif()
    endforeach()
  endwhile()
endfunction()
