# One interface target carries the flags every target of the project is built with.
add_library(kestrin_flags INTERFACE)
target_compile_options(
  kestrin_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                          -Wcast-align -Wunused -Woverloaded-virtual
                          -Wimplicit-fallthrough -Wformat=2 -Werror
                          # g++ 12 reports the standard library's own string concatenation (105651)
                          $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(KESTRIN_SANITIZE)
  target_compile_options(kestrin_flags INTERFACE -fsanitize=${KESTRIN_SANITIZE} -fno-sanitize-recover=all
                                           -fno-omit-frame-pointer
                         # g++ 12 takes the checks it put in itself for uses of unset pointers
                         $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(kestrin_flags INTERFACE -fsanitize=${KESTRIN_SANITIZE})
endif()

# kestrin_room(NAME LINKS...): one folder of the house, one static library.
function(kestrin_room name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp
       ${CMAKE_CURRENT_SOURCE_DIR}/*/*.cpp)
  if(NOT sources)
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
    target_link_libraries(${name} INTERFACE ${ARGN})
    return()
  endif()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${name} PRIVATE kestrin_flags PUBLIC ${ARGN})
endfunction()
