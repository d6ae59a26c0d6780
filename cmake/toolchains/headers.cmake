# The parsers of arguments and of JSON are headers alone, so those of this machine serve other
# platforms, too. The other headers beside them must stay out of sight.
foreach(package CLI11:CLI nlohmann_json:nlohmann)
  string(REPLACE ":" ";" package ${package})
  list(GET package 0 name)
  list(GET package 1 folder)
  set(${name}_DIR ${CMAKE_BINARY_DIR}/headers/${name})
  file(MAKE_DIRECTORY ${${name}_DIR})
  file(CREATE_LINK /usr/include/${folder} ${${name}_DIR}/${folder} SYMBOLIC)
  file(WRITE ${${name}_DIR}/${name}Config.cmake "add_library(${name}::${name} INTERFACE IMPORTED)
target_include_directories(${name}::${name} INTERFACE \${CMAKE_CURRENT_LIST_DIR})
")
endforeach()

# The test framework is compiled from Debian's sources.
set(GTest_DIR ${CMAKE_BINARY_DIR}/headers/GTest)
file(WRITE ${GTest_DIR}/GTestConfig.cmake "
if(NOT TARGET gtest)
  set(INSTALL_GTEST OFF)
  set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)
  add_subdirectory(/usr/src/googletest \${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
endif()
")
