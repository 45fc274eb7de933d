# The engine as a CMake package for other projects:
#   cmake --install BUILD --component Development --prefix DIR
# puts liboculix_core.a, its headers (include/oculix, the include root) and
# lib/cmake/Oculix under DIR; a project then says find_package(Oculix) and
# links Oculix::core. The full install and the Debian package leave it out.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(_dev COMPONENT Development EXCLUDE_FROM_ALL)
set(_cmakedir ${CMAKE_INSTALL_LIBDIR}/cmake/Oculix)

get_target_property(_sources oculix_core SOURCES)
foreach(f ${_sources})
  if(f MATCHES "\\.h$")
    file(RELATIVE_PATH _rel ${PROJECT_SOURCE_DIR}/src ${f})
    get_filename_component(_dir ${_rel} DIRECTORY)
    install(FILES ${f} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/oculix/${_dir} ${_dev})
  endif()
endforeach()

# Whatever the core links, read from its targets rather than listed here:
# Qt modules become components of one find_dependency(Qt6), other imported
# targets (pkg-config's) are made again from their properties, and the
# project's own helper targets are exported beside the core.
set(_qt)
set(_imported)
set(_own)
function(oculix_package_walk target)
  get_target_property(_links ${target} LINK_LIBRARIES)
  get_target_property(_iface ${target} INTERFACE_LINK_LIBRARIES)
  foreach(item IN LISTS _links _iface)
    string(REGEX REPLACE "^\\$<LINK_ONLY:(.*)>$" "\\1" item "${item}")
    if(NOT TARGET "${item}")
      continue()
    endif()
    get_target_property(_aliased ${item} ALIASED_TARGET)
    if(_aliased)
      set(item ${_aliased})
    endif()
    get_target_property(_is_imported ${item} IMPORTED)
    if(item MATCHES "^Qt6?::(.+)$")
      list(APPEND _qt ${CMAKE_MATCH_1})
    elseif(_is_imported)
      list(APPEND _imported ${item})
    elseif(NOT item IN_LIST _own)
      list(APPEND _own ${item})
      oculix_package_walk(${item})
    endif()
  endforeach()
  set(_qt ${_qt} PARENT_SCOPE)
  set(_imported ${_imported} PARENT_SCOPE)
  set(_own ${_own} PARENT_SCOPE)
endfunction()
oculix_package_walk(oculix_core)
list(REMOVE_DUPLICATES _qt)
list(REMOVE_DUPLICATES _imported)

set(OCULIX_PACKAGE_DEPENDENCIES "")
if(_qt)
  string(JOIN " " _components ${_qt})
  string(APPEND OCULIX_PACKAGE_DEPENDENCIES
    "find_dependency(Qt6 ${Qt6_VERSION_MAJOR}.${Qt6_VERSION_MINOR} COMPONENTS ${_components})\n")
endif()
foreach(t ${_imported})
  set(_props "")
  foreach(p INTERFACE_LINK_LIBRARIES INTERFACE_INCLUDE_DIRECTORIES INTERFACE_COMPILE_OPTIONS
            INTERFACE_COMPILE_DEFINITIONS INTERFACE_LINK_OPTIONS INTERFACE_LINK_DIRECTORIES)
    get_target_property(_v ${t} ${p})
    if(p STREQUAL "INTERFACE_LINK_LIBRARIES")
      get_target_property(_type ${t} TYPE)
      if(NOT _type STREQUAL "INTERFACE_LIBRARY")
        get_target_property(_loc ${t} IMPORTED_LOCATION)
        # Find modules such as FindZLIB give the location per configuration only.
        if(NOT _loc)
          get_target_property(_configs ${t} IMPORTED_CONFIGURATIONS)
          foreach(c IN LISTS _configs)
            get_target_property(_loc ${t} IMPORTED_LOCATION_${c})
            if(_loc)
              break()
            endif()
          endforeach()
        endif()
        list(PREPEND _v ${_loc})
        list(REMOVE_ITEM _v _v-NOTFOUND _loc-NOTFOUND)
      endif()
    endif()
    if(_v)
      string(APPEND _props "\n    ${p} \"${_v}\"")
    endif()
  endforeach()
  string(APPEND OCULIX_PACKAGE_DEPENDENCIES
    "if(NOT TARGET ${t})\n  add_library(${t} INTERFACE IMPORTED)\n"
    "  set_target_properties(${t} PROPERTIES${_props})\nendif()\n")
endforeach()

set_target_properties(oculix_core PROPERTIES EXPORT_NAME core)
foreach(t ${_own})
  string(REGEX REPLACE "^oculix_" "" _name ${t})
  set_target_properties(${t} PROPERTIES EXPORT_NAME ${_name})
endforeach()
install(TARGETS oculix_core EXPORT OculixTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} ${_dev}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/oculix)
if(_own)
  install(TARGETS ${_own} EXPORT OculixTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} ${_dev})
endif()
install(EXPORT OculixTargets NAMESPACE Oculix:: DESTINATION ${_cmakedir} ${_dev})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/OculixConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/OculixConfig.cmake INSTALL_DESTINATION ${_cmakedir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/OculixConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/package/OculixConfig.cmake
  ${PROJECT_BINARY_DIR}/package/OculixConfigVersion.cmake DESTINATION ${_cmakedir} ${_dev})
