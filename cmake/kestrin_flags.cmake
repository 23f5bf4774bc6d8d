# The flags every target of the project is built with. Warnings are errors where
# CMAKE_COMPILE_WARNING_AS_ERROR says so: the developers' presets do, a packager's build does not.
add_library(kestrin_flags INTERFACE)
target_compile_options(
  kestrin_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                          -Wcast-align -Wunused -Woverloaded-virtual
                          -Wimplicit-fallthrough -Wformat=2
                          # g++ 12 reports the standard library's own string concatenation (105651)
                          $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
# A release knows no folder it was built in, so that every folder gives the same bytes.
target_compile_options(kestrin_flags INTERFACE
                       $<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=>)
# As Debian builds its packages, whoever builds; scripts/checks/hardening.py looks at what came of it.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fstack-clash-protection KESTRIN_HAS_STACK_CLASH)
check_cxx_compiler_flag(-fcf-protection KESTRIN_HAS_CF_PROTECTION)
target_compile_options(kestrin_flags INTERFACE
                       -fstack-protector-strong
                       $<$<BOOL:${KESTRIN_HAS_STACK_CLASH}>:-fstack-clash-protection>
                       $<$<BOOL:${KESTRIN_HAS_CF_PROTECTION}>:-fcf-protection>)
target_link_options(kestrin_flags INTERFACE -Wl,-z,relro -Wl,-z,now
                    $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>)
if(NOT KESTRIN_SANITIZE) # sanitizers bring checks of their own, and want an optimising build neither
  target_compile_options(kestrin_flags INTERFACE
                         $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE
                         -D_FORTIFY_SOURCE=2>)
endif()
if(KESTRIN_SANITIZE)
  target_compile_options(kestrin_flags INTERFACE -fsanitize=${KESTRIN_SANITIZE} -fno-sanitize-recover=all
                         # g++ 12 takes the checks it put in itself for uses of unset pointers
                         $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(kestrin_flags INTERFACE -fsanitize=${KESTRIN_SANITIZE})
endif()

# What says which version it is links this; no other file is compiled anew for a new one.
add_library(kestrin_version INTERFACE)
target_compile_definitions(kestrin_version INTERFACE KESTRIN_VERSION="${PROJECT_VERSION}")
