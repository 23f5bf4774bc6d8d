# Tests that start the programs themselves; harness/world.py says how they are written.
# Debian's own Python has the bindings; another may come first on PATH.
find_program(WALK_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_program(WALK_PYTHON python3 REQUIRED)

# kestrin_walks(LABEL FILES...): one test of ctest for each method of the classes in these files.
function(kestrin_walks label)
  foreach(file ${ARGN})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    file(STRINGS ${file} lines REGEX "^(class|    def test_)")
    foreach(line ${lines})
      if(line MATCHES "^class ([A-Za-z0-9_]+)")
        set(class ${CMAKE_MATCH_1})
      elseif(line MATCHES "def (test_[a-z0-9_]+)")
        set(name ${class}.${CMAKE_MATCH_1})
        add_test(NAME ${label}.${name} COMMAND ${WALK_PYTHON} ${file} ${name})
        set_tests_properties(${label}.${name} PROPERTIES LABELS ${label} TIMEOUT 100 ENVIRONMENT
                                                         KESTRIN_BIN=${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
      endif()
    endforeach()
  endforeach()
endfunction()
