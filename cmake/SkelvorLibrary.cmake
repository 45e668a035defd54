# skelvor_library(<target> <dir> [deps...]): a static library of all sources of
# a subsystem folder; an interface library while the folder has no source yet.
function(skelvor_library target)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(sources OR SKELVOR_EXTRA_SOURCES)
    add_library(${target} STATIC ${sources} ${SKELVOR_EXTRA_SOURCES})
    target_include_directories(${target} PUBLIC ${CMAKE_SOURCE_DIR})
    target_link_libraries(${target} PUBLIC ${ARGN})
  else()
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${target} INTERFACE ${ARGN})
  endif()
endfunction()
