# Tests in Python. Those that start the application use harness/world.py.

# Debian's own Python has the bindings; another may come first on PATH.
find_program(TEST_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_program(TEST_PYTHON python3 REQUIRED)

# kestrin_python_tests(LABEL FILES...): one test of ctest for each method of the classes in the files.
function(kestrin_python_tests label)
  foreach(file ${ARGN})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    file(STRINGS ${file} lines REGEX "^(class|    def test_)")
    foreach(line ${lines})
      if(line MATCHES "^class ([A-Za-z0-9_]+)")
        set(class ${CMAKE_MATCH_1})
      elseif(line MATCHES "def (test_[a-z0-9_]+)")
        set(name ${class}.${CMAKE_MATCH_1})
        add_test(NAME ${label}.${name} COMMAND ${TEST_PYTHON} ${file} ${name})
        set_tests_properties(
          ${label}.${name}
          PROPERTIES LABELS ${label} TIMEOUT ${patience} ENVIRONMENT
                     "KESTRIN_BIN=${CMAKE_RUNTIME_OUTPUT_DIRECTORY};KESTRIN_SANITIZE=${KESTRIN_SANITIZE}")
      endif()
    endforeach()
  endforeach()
endfunction()
