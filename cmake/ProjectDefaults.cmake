# Language, warnings, sanitizers and the helper that declares one library of the house.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(SONAVEX_CCACHE ccache)
if(SONAVEX_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${SONAVEX_CCACHE})
endif()

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
if(SONAVEX_WITH_QT)
  find_package(Qt6 REQUIRED COMPONENTS Widgets)
endif()
pkg_check_modules(FFTW3 REQUIRED IMPORTED_TARGET fftw3)

add_library(sonavex_defaults INTERFACE)
target_include_directories(sonavex_defaults INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(sonavex_defaults INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror
  # Results must not depend on whether the machine has fused multiply-add.
  -ffp-contract=off -fno-math-errno
  # Up to version 12 the compiler sees overlaps in joined strings that cannot be, when it inlines most.
  "$<$<AND:$<CONFIG:Release>,$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>")
# It takes the operations on small structures from a library, where the other compiler writes them out.
target_link_libraries(sonavex_defaults INTERFACE "$<$<CXX_COMPILER_ID:Clang>:atomic>")
if(SONAVEX_SANITIZE)
  target_compile_options(sonavex_defaults INTERFACE
    -fsanitize=${SONAVEX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # With the checks in between, the compiler loses sight of what the standard library has set.
    "$<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>")
  target_link_options(sonavex_defaults INTERFACE -fsanitize=${SONAVEX_SANITIZE})
  # Function multiversioning resolves before the sanitizer runtime is ready.
  target_compile_definitions(sonavex_defaults INTERFACE SONAVEX_SANITIZED)
endif()
if(SONAVEX_COVERAGE)
  target_compile_options(sonavex_defaults INTERFACE --coverage)
  target_link_options(sonavex_defaults INTERFACE --coverage)
endif()

if(SONAVEX_JOIN_PRODUCT)
  # Joined sources are no headers: a type may have members of its source's unnamed namespace.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()

# sonavex_joined_sources(RESULT NAME SOURCE...): the sources of target NAME; with SONAVEX_JOIN_PRODUCT eight are
# compiled as one, but for those with options of their own. Unlike the unity builds of CMake this names them by
# their path from the joined source: sanitizers write names of sources into the programs, and an installed
# program must not tell where it was built.
function(sonavex_joined_sources result name)
  set(${result} ${ARGN} PARENT_SCOPE)
  if(NOT SONAVEX_JOIN_PRODUCT)
    return()
  endif()
  set(sources ${ARGN})
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/joined)
  set(batch 0)
  set(count 0)
  foreach(source IN LISTS sources)
    get_source_file_property(options ${source} COMPILE_OPTIONS)
    if(options)
      continue()
    endif()
    set_source_files_properties(${source} PROPERTIES HEADER_FILE_ONLY TRUE)
    math(EXPR batch "${count} / 8")
    math(EXPR count "${count} + 1")
    cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
    cmake_path(RELATIVE_PATH source BASE_DIRECTORY ${folder})
    string(APPEND text_${batch} "#include \"${source}\"\n")
  endforeach()
  set(joined "")
  foreach(number RANGE ${batch})
    file(CONFIGURE OUTPUT ${folder}/${name}-${number}.cpp CONTENT "${text_${number}}" @ONLY)
    list(APPEND joined ${folder}/${name}-${number}.cpp)
  endforeach()
  set(${result} ${ARGN} ${joined} PARENT_SCOPE)
endfunction()

function(sonavex_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  sonavex_joined_sources(ARG_SOURCES ${name} ${ARG_SOURCES})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC sonavex_defaults ${ARG_LINKS})
endfunction()
