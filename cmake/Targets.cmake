# Our targets: every source of the named folders, our warnings as errors.

# -Wmaybe-uninitialized of GCC 12 sees ghosts in std::variant.
add_library(our_warnings INTERFACE)
target_compile_options(our_warnings INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wconversion -Wshadow -Werror>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
  $<$<BOOL:${SELFREPORT_UNITY}>:-w> # most would be of names that only another file of the batch has
  $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion;-Wno-unknown-pragmas>) # as GCC understands the above

# our_sources(VARIABLE FOLDER...): the sources directly in each folder.
function(our_sources variable)
  set(found)
  foreach(folder IN LISTS ARGN)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.cpp)
    list(APPEND found ${sources})
  endforeach()
  set(${variable} ${found} PARENT_SCOPE)
endfunction()

# our_batches(TARGET SOURCE...): with SELFREPORT_UNITY the sources of a folder are compiled so many together.
function(our_batches target)
  if(NOT SELFREPORT_UNITY)
    return()
  endif()
  set(most 40) # of a folder: what its sources have in common is compiled once
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  foreach(source IN LISTS ARGN)
    file(STRINGS ${source} opens REGEX "^using namespace") # it would open the names to the rest of the batch
    if(opens)
      continue()
    endif()
    cmake_path(GET source PARENT_PATH folder)
    file(RELATIVE_PATH room ${CMAKE_SOURCE_DIR} ${folder})
    string(MAKE_C_IDENTIFIER "${room}" room)
    list(APPEND of_${room} ${source})
    list(LENGTH of_${room} number)
    math(EXPR batch "(${number} - 1) / ${most}")
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${room}_${batch})
  endforeach()
endfunction()

# our_headers(NAME LINKS target... OPTIONS o... HEADERS <h>...): headers compiled once for all of our targets that reuse
# NAME; these need the same options.
function(our_headers name)
  cmake_parse_arguments(PARSE_ARGV 1 our "" "" "LINKS;OPTIONS;HEADERS")
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/${name}.cpp CONTENT "// Only for its precompiled headers.\n")
  add_library(${name} STATIC ${CMAKE_BINARY_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE ${our_LINKS} our_warnings)
  target_compile_options(${name} PRIVATE ${our_OPTIONS})
  # The layers below use words such as "slots" that the toolkit would otherwise make macros of.
  target_compile_definitions(${name} PRIVATE QT_NO_KEYWORDS)
  target_precompile_headers(${name} PRIVATE ${our_HEADERS})
endfunction()
set(our_standard_headers
  <algorithm> <array> <charconv> <chrono> <cmath> <cstdint> <functional> <map> <memory> <optional> <ranges> <span>
  <sstream> <string> <string_view> <unordered_map> <utility> <variant> <vector>)
our_headers(standard_headers HEADERS ${our_standard_headers})
# What many sources use, not all that the toolkit has: every source takes up the templates of its precompiled header,
# and those of all widgets cost each a second.
set(our_toolkit_headers
  <QApplication> <QCheckBox> <QClipboard> <QComboBox> <QDialog> <QDir> <QFile> <QFormLayout> <QGridLayout> <QKeyEvent>
  <QLabel> <QLineEdit> <QMenu> <QMimeData> <QPainter> <QPlainTextEdit> <QPushButton> <QScrollBar> <QSpinBox> <QString>
  <QStringList> <QTabBar> <QTimer> <QToolButton> <QVBoxLayout> <QWidget>)
our_headers(toolkit_headers LINKS Qt6::Widgets Qt6::PrintSupport HEADERS ${our_standard_headers} ${our_toolkit_headers})

# our_static_library(NAME [QT] FOLDERS f... LINKS target...)
# QT: classes with signals and slots, the toolkit's headers precompiled.
function(our_static_library name)
  cmake_parse_arguments(PARSE_ARGV 1 our "QT" "" "FOLDERS;LINKS;PRIVATE_LINKS")
  our_sources(sources ${our_FOLDERS})
  if(NOT sources)
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ${our_LINKS})
    return()
  endif()
  add_library(${name} STATIC ${sources})
  our_batches(${name} ${sources})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${our_LINKS} PRIVATE ${our_PRIVATE_LINKS} our_warnings)
  if(our_QT)
    target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS)
    # moc cannot read what the compiler's macros open in the standard library's headers.
    set_target_properties(${name} PROPERTIES AUTOMOC ON AUTOMOC_COMPILER_PREDEFINES OFF)
    target_precompile_headers(${name} REUSE_FROM toolkit_headers)
  else()
    target_precompile_headers(${name} REUSE_FROM standard_headers)
  endif()
endfunction()

# What tests themselves do takes no time; compiling them does.
set(our_test_options -O0 $<$<CONFIG:Release>:-U_FORTIFY_SOURCE>)

# Leaks of the libraries below are named by their functions, which this program finds also in stripped libraries.
set(our_test_environment
  "LC_ALL=C.UTF-8;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/leaks.supp:print_suppressions=0;ASAN_SYMBOLIZER_PATH=/usr/bin/addr2line")

# our_tests(NAME FOLDERS f... LINKS target... [ON_SERVER filter]): one program over tests/<folder>.
# ON_SERVER: the tests of this filter run a second time, through the driver against the test server, and a third time
# against the server that SELFREPORT_TEST_SERVER names; without one they are skipped there.
function(our_tests name)
  cmake_parse_arguments(PARSE_ARGV 1 our "" "MAIN;ON_SERVER" "FOLDERS;LINKS")
  list(TRANSFORM our_FOLDERS PREPEND tests/)
  our_sources(sources ${our_FOLDERS})
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources} ${our_MAIN})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${our_LINKS} GTest::gmock our_warnings)
  if(our_MAIN)
    target_link_libraries(${name} PRIVATE GTest::gtest)
  else()
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  target_compile_options(${name} PRIVATE ${our_test_options})
  if("Qt6::Test" IN_LIST our_LINKS)
    target_precompile_headers(${name} REUSE_FROM window_test_headers)
  else()
    target_precompile_headers(${name} REUSE_FROM test_headers)
  endif()
  foreach(source IN LISTS sources) # only those that ask: the cache serves the others to every clone
    file(STRINGS ${source} asks REGEX "TEST_DATA_FOLDER|TEST_BINARY_FOLDER|golden_texts")
    if(asks)
      set_source_files_properties(${source} PROPERTIES COMPILE_DEFINITIONS
        "TEST_DATA_FOLDER=\"${CMAKE_SOURCE_DIR}/tests/data\";TEST_BINARY_FOLDER=\"${CMAKE_BINARY_DIR}/bin\"")
    endif()
  endforeach()
  add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
  set(environment "QT_QPA_PLATFORM=offscreen;${our_test_environment}")
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 ENVIRONMENT "${environment};SELFREPORT_TEST_SERVER=")
  if(our_ON_SERVER)
    add_test(NAME ${name}_on_server COMMAND ${name} --gtest_brief=1 --gtest_filter=${our_ON_SERVER})
    set_tests_properties(${name}_on_server PROPERTIES
      TIMEOUT 300 ENVIRONMENT "${environment};SELFREPORT_TEST_SERVER=;SELFREPORT_TEST_PROVIDER=server")
    add_test(NAME ${name}_on_real_server
      COMMAND ${CMAKE_SOURCE_DIR}/tests/on_real_server $<TARGET_FILE:${name}> ${our_ON_SERVER})
    set_tests_properties(${name}_on_real_server PROPERTIES
      LABELS real_server SKIP_RETURN_CODE 77 TIMEOUT 600 ENVIRONMENT "${environment}")
  endif()
endfunction()
