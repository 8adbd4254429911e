# Settings and helper functions shared by every target of the project.

include(GNUInstallDirs)

option(PYLON_WARNINGS_AS_ERRORS "Treat warnings in our own code as errors" ${PROJECT_IS_TOP_LEVEL})
set(PYLON_SANITIZE "" CACHE STRING "Sanitizers for every target, as -fsanitize= takes them")

if(PROJECT_IS_TOP_LEVEL)
  find_program(PYLON_CCACHE ccache)
  if(PYLON_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${PYLON_CCACHE})
  endif()
  # One folder for programs and libraries: Windows finds a DLL beside the program that needs it.
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
endif()

# Language level, warnings and sanitizers of one of our own targets.
function(pylon_configure_target target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    AUTOMOC ON)
  target_compile_definitions(${target} PRIVATE QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /utf-8 $<$<BOOL:${PYLON_WARNINGS_AS_ERRORS}>:/WX>)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
      $<$<BOOL:${PYLON_WARNINGS_AS_ERRORS}>:-Werror>)
  endif()
  if(PYLON_SANITIZE)
    set(sanitize -fsanitize=${PYLON_SANITIZE} -fno-omit-frame-pointer)
    if(NOT PYLON_SANITIZE STREQUAL "thread")
      list(APPEND sanitize -fno-sanitize-recover=all)
    endif()
    target_compile_options(${target} PRIVATE ${sanitize})
    target_link_options(${target} PRIVATE -fsanitize=${PYLON_SANITIZE})
  endif()
endfunction()

# Gives a program of ours debug information in every build, for stack traces with file names and lines.
function(pylon_describe_lines target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /Zi)
    target_link_options(${target} PRIVATE /DEBUG)
  else()
    # Wine reads none that is newer.
    target_compile_options(${target} PRIVATE -gdwarf-4)
  endif()
endfunction()

# pylon_sources(SOURCES … HEADERS …): adds the sources and public headers of one subsystem to the
# library. Headers are sources too, or moc would pass them over.
function(pylon_sources)
  cmake_parse_arguments(arg "" "" "SOURCES;HEADERS" ${ARGN})
  target_sources(pylonsdk-util
    PRIVATE ${arg_SOURCES} ${arg_HEADERS}
    PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${arg_HEADERS})
endfunction()

# pylon_add_program(name sources…): one of our programs that links the library.
function(pylon_add_program name)
  add_executable(${name} ${ARGN})
  pylon_configure_target(${name})
  target_link_libraries(${name} PRIVATE PylonSDK::Util)
endfunction()

# pylon_add_test(name [LABELS …] [LIBRARIES …] SOURCES …): one Qt Test program, run by ctest.
function(pylon_add_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LABELS;LIBRARIES" ${ARGN})
  pylon_add_program(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE Qt6::Test ${arg_LIBRARIES})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 LABELS "${arg_LABELS}"
    ENVIRONMENT "TZ=Europe/Berlin;QT_QPA_PLATFORM=offscreen")
  # What ThreadSanitizer is for, as a target of its own.
  if("threads" IN_LIST arg_LABELS)
    if(NOT TARGET thread-tests)
      add_custom_target(thread-tests)
    endif()
    add_dependencies(thread-tests ${name})
  endif()
endfunction()
