# Each layer's headers are reached as "<layer>/Name.h" through an include root of its own that
# holds just that layer, so a layer sees the headers of the layers it links and no others.
function(quillon_include_root name)
  set(root "${PROJECT_BINARY_DIR}/include/${name}")
  file(MAKE_DIRECTORY "${root}")
  file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}" "${root}/${name}" SYMBOLIC)
  set(QUILLON_INCLUDE_ROOT "${root}" PARENT_SCOPE)
endfunction()

# One static library per source folder. Its sources are the folder's .cpp files, so adding a
# file needs no edit here; the link lines passed in are the only arrows the layer may use.
function(quillon_library name)
  cmake_parse_arguments(QL "" "" "LINKS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
  if(sources)
    set(scope PUBLIC)
    add_library(quillon_${name} STATIC ${sources})
  else()
    # A layer that has no code yet still passes its arrows on.
    set(scope INTERFACE)
    add_library(quillon_${name} INTERFACE)
  endif()
  add_library(quillon::${name} ALIAS quillon_${name})
  quillon_include_root(${name})
  target_include_directories(quillon_${name} ${scope} "${QUILLON_INCLUDE_ROOT}")
  target_link_libraries(quillon_${name} ${scope} ${QL_LINKS})
  target_compile_definitions(quillon_${name} ${scope} QT_NO_KEYWORDS)
endfunction()

# One GoogleTest program per test folder; each test case becomes a CTest test. MAIN names another
# main() library (the desktop tests need a GUI application).
function(quillon_test name)
  cmake_parse_arguments(QT "" "MAIN" "LINKS" ${ARGN})
  if(NOT QT_MAIN)
    set(QT_MAIN quillon_testmain)
  endif()
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
  add_executable(test_${name} ${sources})
  target_link_libraries(test_${name} PRIVATE ${QT_LINKS} GTest::gtest GTest::gmock ${QT_MAIN})
  target_compile_definitions(test_${name} PRIVATE QUILLON_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  gtest_discover_tests(test_${name}
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen"
    DISCOVERY_TIMEOUT 60)
endfunction()
