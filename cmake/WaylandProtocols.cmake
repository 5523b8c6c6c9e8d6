find_package(PkgConfig REQUIRED)
pkg_check_modules(WAYLAND_CLIENT REQUIRED IMPORTED_TARGET wayland-client>=1.21)
pkg_get_variable(WAYLAND_SCANNER wayland-scanner wayland_scanner)
pkg_get_variable(WAYLAND_PROTOCOLS wayland-protocols pkgdatadir)
if(NOT WAYLAND_SCANNER OR NOT WAYLAND_PROTOCOLS)
  message(FATAL_ERROR "wayland-scanner and wayland-protocols are needed")
endif()

# wayland_protocols(<name> <description>...)
#
# A library with the client's side of these protocols: for each <file>.xml the header
# <file>-client-protocol.h. A description that is no file of this folder is one of
# wayland-protocols.
function(wayland_protocols name)
  foreach(description IN LISTS ARGN)
    get_filename_component(xml ${description} ABSOLUTE)
    if(NOT EXISTS ${xml})
      set(xml ${WAYLAND_PROTOCOLS}/${description})
    endif()
    get_filename_component(stem ${description} NAME_WE)
    set(header ${CMAKE_CURRENT_BINARY_DIR}/${name}/${stem}-client-protocol.h)
    set(code ${CMAKE_CURRENT_BINARY_DIR}/${name}/${stem}-protocol.c)
    # One argument has the name "namespace", which C++ does not take.
    add_custom_command(
      OUTPUT ${header}
      COMMAND ${WAYLAND_SCANNER} --strict client-header ${xml} ${header}
      COMMAND sed -i "s/\\bnamespace)/scope)/" ${header}
      DEPENDS ${xml} VERBATIM)
    add_custom_command(
      OUTPUT ${code}
      COMMAND ${WAYLAND_SCANNER} --strict private-code ${xml} ${code}
      DEPENDS ${xml} VERBATIM)
    list(APPEND generated ${header} ${code})
  endforeach()
  add_library(${name} STATIC ${generated})
  target_include_directories(${name} SYSTEM INTERFACE ${CMAKE_CURRENT_BINARY_DIR}/${name})
  target_link_libraries(${name} PUBLIC PkgConfig::WAYLAND_CLIENT)
endfunction()
