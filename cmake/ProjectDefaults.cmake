# Dependencies, language standard, warnings and sanitizers of all targets; sonavex_library() declares a library.

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
pkg_check_modules(FFTW3 REQUIRED IMPORTED_TARGET fftw3)
find_package(nlohmann_json REQUIRED)
if(NOT SONAVEX_CORE_ONLY)
  pkg_check_modules(PULSE REQUIRED IMPORTED_TARGET libpulse)
  # Without -D_REENTRANT, which has no effect but rules out the precompiled headers of the tests.
  set_property(TARGET PkgConfig::PULSE PROPERTY INTERFACE_COMPILE_OPTIONS)
  pkg_check_modules(ALSA REQUIRED IMPORTED_TARGET alsa)
  pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET sndfile)
  find_package(CLI11 REQUIRED)
  find_library(SONAVEX_CHM_LIBRARY chm REQUIRED)
endif()
if(SONAVEX_WITH_QT)
  find_package(Qt6 REQUIRED COMPONENTS Widgets PrintSupport)
  find_package(QCustomPlotQt6 REQUIRED)
  pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb)
endif()

add_library(sonavex_defaults INTERFACE)
target_include_directories(sonavex_defaults INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(sonavex_defaults INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
  # Results are the same on processors with and without fused multiply-add.
  -ffp-contract=off -fno-math-errno
  # At -O3, GCC 12 and older report false overlaps in joined strings.
  "$<$<AND:$<CONFIG:Release>,$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>")
# Clang calls libatomic for atomic structs; GCC inlines the operations.
target_link_libraries(sonavex_defaults INTERFACE "$<$<CXX_COMPILER_ID:Clang>:atomic>")
if(SONAVEX_SANITIZE)
  target_compile_options(sonavex_defaults INTERFACE
    -fsanitize=${SONAVEX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # GCC's sanitizers cause false warnings about uninitialised variables in the standard library.
    "$<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>")
  target_link_options(sonavex_defaults INTERFACE -fsanitize=${SONAVEX_SANITIZE})
  # The loader chooses between versions of a function before the sanitizer's runtime is ready.
  target_compile_definitions(sonavex_defaults INTERFACE SONAVEX_SANITIZED)
endif()
if(SONAVEX_COVERAGE)
  target_compile_options(sonavex_defaults INTERFACE --coverage)
  target_link_options(sonavex_defaults INTERFACE --coverage)
endif()
if(CMAKE_UNITY_BUILD)
  # In a unity build GCC takes the sources for headers and warns about their unnamed namespaces.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()

# sonavex_library(NAME FOLDER folder [WITHOUT subfolder...] | SOURCES source... [LINKS target...])
# A static library of all sources below the folder, or of the given sources.
function(sonavex_library name)
  cmake_parse_arguments(ARG "" "FOLDER" "SOURCES;LINKS;WITHOUT" ${ARGN})
  if(ARG_FOLDER)
    file(GLOB_RECURSE ARG_SOURCES CONFIGURE_DEPENDS ${ARG_FOLDER}/*.cpp ${ARG_FOLDER}/*.h ${ARG_FOLDER}/*.ui)
    foreach(subfolder ${ARG_WITHOUT})
      list(FILTER ARG_SOURCES EXCLUDE REGEX "^${ARG_FOLDER}/${subfolder}/")
    endforeach()
  endif()
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC sonavex_defaults ${ARG_LINKS})
endfunction()
