# How everything in this repository is compiled: language level, warnings, sanitizers, output folders.

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

find_program(MQRIG_CCACHE ccache)
if(MQRIG_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${MQRIG_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${MQRIG_CCACHE})
endif()

find_package(Threads REQUIRED)

add_compile_definitions(_GNU_SOURCE _FILE_OFFSET_BITS=64)
if(MQRIG_M32)
  # SSE arithmetic, so that a 32-bit build computes and prints the same figures as a 64-bit one.
  add_compile_options(-m32 -msse2 -mfpmath=sse)
  add_link_options(-m32)
endif()
if(MQRIG_SANITIZE)
  add_compile_options(-fsanitize=${MQRIG_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${MQRIG_SANITIZE})
endif()

# Warnings for our own code; code of others (GoogleTest built from its sources) does without.
add_library(mqrig_warnings INTERFACE)
target_compile_options(mqrig_warnings INTERFACE
  -Wall -Wextra -Wshadow -Werror
  $<$<COMPILE_LANGUAGE:CXX>:-Wconversion -Wnon-virtual-dtor -Woverloaded-virtual>)

# The build tree has the shape of an installed one: programs in bin/, the embedded queue manager in lib/mqrig/.
set(MQRIG_BIN_DIR ${CMAKE_BINARY_DIR}/bin)
set(MQRIG_LIB_DIR ${CMAKE_BINARY_DIR}/lib/mqrig)
