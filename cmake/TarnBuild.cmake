# Settings that every target of this tree shares, and the one function that makes a module.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
# Programs and libraries find ours beside themselves or in an installation, and nowhere else: CMake's own build path
# holds room for a later one, an empty entry of which the loader takes for the current folder.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

find_package(Threads REQUIRED)
find_program(TARN_CCACHE ccache)
if(TARN_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${TARN_CCACHE})
endif()

# Private to our own targets, so that a consumer never meets them.
add_library(tarn_options INTERFACE)
target_compile_options(tarn_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align -Wunused -Wnull-dereference
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict> # g++ 12 sees overlaps in every "literal" + std::string
  $<$<BOOL:${TARN_WERROR}>:-Werror>)
if(TARN_SANITIZE)
  # Most of an instrumented build's time goes into headers: some sources of a target at a time make one unit. The other
  # presets see each source alone.
  set(CMAKE_UNITY_BUILD ON)
  set(CMAKE_UNITY_BUILD_BATCH_SIZE 6)
  # of a neighbour's names; types of an included source
  target_compile_options(tarn_options INTERFACE -Wno-shadow $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  target_compile_options(tarn_options INTERFACE
    -fsanitize=${TARN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
    -Wno-null-dereference $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized> # both are wrong in instrumented code
    $<$<CXX_COMPILER_ID:GNU>:-Wno-tsan>) # the sockets' library fences; the thread sanitizer doesn't follow that
  target_link_options(tarn_options INTERFACE -fsanitize=${TARN_SANITIZE})
endif()

# tarn_module(NAME [SHARED] [HOT] [PUBLIC targets...] [PRIVATE targets...] [EXCLUDE regex] [INCLUDE folder])
# Makes a library of all sources in the current folder. Its own folder is its include folder unless INCLUDE names
# another, so that a header can only be included by a target that links this one. HOT: worth optimising
# in a build for the sanitizers too.
function(tarn_module name)
  cmake_parse_arguments(ARG "SHARED;HOT" "EXCLUDE;INCLUDE" "PUBLIC;PRIVATE" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  if(ARG_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX ${ARG_EXCLUDE})
  endif()
  if(ARG_SHARED)
    add_library(${name} SHARED ${sources})
  else()
    add_library(${name} STATIC ${sources})
  endif()
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  if(ARG_HOT AND TARN_SANITIZE)
    target_compile_options(${name} PRIVATE -O2)
  endif()
  if(NOT ARG_INCLUDE)
    set(ARG_INCLUDE ${CMAKE_CURRENT_SOURCE_DIR})
  endif()
  target_include_directories(${name} PUBLIC ${ARG_INCLUDE})
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE} $<BUILD_INTERFACE:tarn_options>)
endfunction()
