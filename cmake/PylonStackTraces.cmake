# Who reads the stack: the standard library where it can, else Boost, or on Windows the system's debug
# help library. Sets PYLON_STACK_TRACES to the ending of the source file to compile, and
# PYLON_STACK_TRACE_LIBRARY to what it needs.

include(CheckCXXSourceCompiles)

# The facility is newer than the standard that the rest is written in, and GCC keeps it in a static
# library of its own, whose name has changed; it has to fit into a shared one.
function(pylon_check_std_stacktrace library result)
  set(CMAKE_REQUIRED_QUIET ON)
  set(CMAKE_REQUIRED_FLAGS "${CMAKE_CXX23_STANDARD_COMPILE_OPTION}")
  set(CMAKE_REQUIRED_LIBRARIES ${library})
  if(NOT MSVC)
    string(APPEND CMAKE_REQUIRED_FLAGS " ${CMAKE_CXX_COMPILE_OPTIONS_PIC}")
    set(CMAKE_REQUIRED_LINK_OPTIONS -shared -Wl,--no-undefined)
  endif()
  check_cxx_source_compiles("
    #include <version>
    #ifndef __cpp_lib_stacktrace
    #error
    #endif
    #include <stacktrace>
    #include <string>
    int main() { return std::to_string(std::stacktrace::current()).empty(); }
    " ${result})
endfunction()

set(PYLON_STACK_TRACES "")
set(PYLON_STACK_TRACE_LIBRARY "")
foreach(library IN ITEMS "" stdc++exp stdc++_libbacktrace)
  string(MAKE_C_IDENTIFIER "PYLON_STD_STACKTRACE_${library}" found)
  pylon_check_std_stacktrace("${library}" ${found})
  if(${found})
    set(PYLON_STACK_TRACES std)
    set(PYLON_STACK_TRACE_LIBRARY ${library})
    break()
  endif()
endforeach()
if(NOT PYLON_STACK_TRACES AND WIN32)
  set(PYLON_STACK_TRACES win)
  set(PYLON_STACK_TRACE_LIBRARY dbghelp)
elseif(NOT PYLON_STACK_TRACES)
  set(PYLON_STACK_TRACES boost)
  find_package(Boost 1.70 REQUIRED CONFIG COMPONENTS stacktrace_backtrace)
  set(PYLON_STACK_TRACE_LIBRARY Boost::stacktrace_backtrace)
endif()
message(STATUS "Stack traces: ${PYLON_STACK_TRACES}")
