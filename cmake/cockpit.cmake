# The web cockpit as a part of offsetctl: `offsetctl serve`. Boost.Beast, the JSON library and the page's plotting
# library come from outside (cmake/setup.sh installs them). Without one of them offsetctl is built as ever, and the
# command says what is missing.
set(cockpit_missing "")
if(NOT EXISTS /usr/include/boost/beast.hpp)
  set(cockpit_missing "Boost is missing: apt-get install libboost-dev, and build again")
elseif(NOT EXISTS /usr/include/nlohmann/json.hpp)
  set(cockpit_missing "the JSON library is missing: apt-get install nlohmann-json3-dev, and build again")
endif()

# URL-PATH SOURCE-FILE a line.
set(cockpit_list ${CMAKE_SOURCE_DIR}/web/files.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${cockpit_list})
file(STRINGS ${cockpit_list} cockpit_lines)
set(cockpit_files "")
foreach(line ${cockpit_lines})
  if(NOT line MATCHES "^(/[^ ]*) ([^ ]+)$")
    message(FATAL_ERROR "web/files.txt: a line is URL-PATH SOURCE-FILE, not \"${line}\"")
  endif()
  set(source ${CMAKE_SOURCE_DIR}/${CMAKE_MATCH_2})
  list(APPEND cockpit_files ${source})
  if(NOT EXISTS ${source} AND NOT source MATCHES "/web/node_modules/")
    message(FATAL_ERROR "web/files.txt names ${source}, which does not exist")
  elseif(NOT EXISTS ${source} AND cockpit_missing STREQUAL "")
    set(cockpit_missing "uPlot is missing: npm ci --ignore-scripts in the folder web, and build again")
  endif()
endforeach()

# The parts that need neither sockets nor threads, for tests and fuzz targets, too.
set(cockpit_pure answers folders http_rules mirror player values)
list(TRANSFORM cockpit_pure REPLACE "(.+)" "${CMAKE_SOURCE_DIR}/tools/cockpit/\\1.cpp")
if(cockpit_missing STREQUAL "")
  # Their headers without all the others of /usr/include, which are not for Windows.
  set(cockpit_headers ${CMAKE_BINARY_DIR}/cockpit_headers)
  file(MAKE_DIRECTORY ${cockpit_headers})
  foreach(library boost nlohmann)
    file(CREATE_LINK /usr/include/${library} ${cockpit_headers}/${library} SYMBOLIC)
  endforeach()
  set(cockpit_table ${CMAKE_BINARY_DIR}/web_files.cpp)
  add_custom_command(OUTPUT ${cockpit_table}
    COMMAND ${CMAKE_COMMAND} -DTOP=${CMAKE_SOURCE_DIR} -DTABLE=${cockpit_table} -P ${CMAKE_SOURCE_DIR}/cmake/embed_web.cmake
    DEPENDS ${CMAKE_SOURCE_DIR}/cmake/embed_web.cmake ${CMAKE_SOURCE_DIR}/docs/offsets.json ${cockpit_list} ${cockpit_files} VERBATIM)
  set(cockpit_threads ${CMAKE_SOURCE_DIR}/tools/cockpit/serve.cpp ${CMAKE_SOURCE_DIR}/tools/cockpit/source.cpp
                      ${CMAKE_SOURCE_DIR}/tools/cockpit/web_server.cpp ${CMAKE_SOURCE_DIR}/tools/cockpit/web_streams.cpp)
  target_sources(offsetctl PRIVATE ${cockpit_pure} ${cockpit_threads} ${cockpit_table})
  target_include_directories(offsetctl SYSTEM PRIVATE ${cockpit_headers})
  if(WIN32)
    # Asio asks for Windows 7's sockets.
    set_source_files_properties(${CMAKE_SOURCE_DIR}/tools/cockpit/web_server.cpp ${CMAKE_SOURCE_DIR}/tools/cockpit/web_streams.cpp PROPERTIES COMPILE_OPTIONS
                                "-UWINVER;-DWINVER=0x0601;-U_WIN32_WINNT;-D_WIN32_WINNT=0x0601;-Wa,-mbig-obj")
    target_link_libraries(offsetctl PRIVATE mswsock)
  endif()
else()
  message(STATUS "The web cockpit is left out: ${cockpit_missing}")
  target_sources(offsetctl PRIVATE tools/cockpit/missing.cpp)
  set_source_files_properties(tools/cockpit/missing.cpp PROPERTIES COMPILE_DEFINITIONS
                              "COCKPIT_MISSING=\"${cockpit_missing}\"")
endif()
