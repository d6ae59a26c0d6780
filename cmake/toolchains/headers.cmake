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
