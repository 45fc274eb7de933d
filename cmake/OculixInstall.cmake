# The installed program: the user manual built from docs/manual, desktop
# integration, install rules and the Debian package (cpack -G DEB).
#
# Layout under the prefix: the program keeps its folder of data beside it, as
# it expects, in lib/oculix; bin/oculix links to it.
#   bin/oculix -> ../lib/oculix/Oculix
#   lib/oculix/Oculix, KorvalCam, ZephraCam      program and its brand links
#   lib/oculix/svrdata/*.svr                     factory calibrations
#   lib/oculix/<brand>_EN.pdf, <brand>_CN.pdf    user manual
#   share/applications, share/metainfo, share/icons/hicolor
set(OCULIX_APP_ID org.oculix.Oculix)
set(OCULIX_PROGRAM_INSTALL_DIR lib/oculix)
set(_progdir ${PROJECT_BINARY_DIR}/src/app)

find_package(Qt6 6.4 REQUIRED COMPONENTS Gui Svg)
add_executable(oculix_assets ${PROJECT_SOURCE_DIR}/tools/assets/OculixAssets.cpp)
target_link_libraries(oculix_assets PRIVATE Qt6::Gui Qt6::Svg)
# A build tool: no sanitizers, so a sanitised build does not fail on Qt's own
# font caches.
target_compile_options(oculix_assets PRIVATE -Wall -Wextra)

# The manual, one PDF per language, named after each brand folder.
set(_brands Oculix ${OCULIX_BRAND_LINKS})
set(_pdfs)
foreach(lang EN CN)
  string(TOLOWER ${lang} _l)
  if(lang STREQUAL "CN")
    set(_font "Noto Sans CJK SC")
  else()
    set(_font "Liberation Sans")
  endif()
  set(_md ${PROJECT_SOURCE_DIR}/docs/manual/manual_${_l}.md)
  set(_out ${_progdir}/Oculix_${lang}.pdf)
  set(_commands COMMAND oculix_assets pdf ${_md} ${_out} ${_font})
  foreach(b ${OCULIX_BRAND_LINKS})
    list(APPEND _commands COMMAND ${CMAKE_COMMAND} -E create_symlink Oculix_${lang}.pdf ${_progdir}/${b}_${lang}.pdf)
  endforeach()
  add_custom_command(OUTPUT ${_out} ${_commands} DEPENDS oculix_assets ${_md}
    COMMENT "Manual ${lang}" VERBATIM)
  list(APPEND _pdfs ${_out})
endforeach()

set(_icon_svg ${PROJECT_SOURCE_DIR}/resources/icons/oculix.svg)
set(_pngs)
foreach(size 48 128 256)
  set(_png ${PROJECT_BINARY_DIR}/icons/${size}/${OCULIX_APP_ID}.png)
  add_custom_command(OUTPUT ${_png}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/icons/${size}
    COMMAND oculix_assets png ${_icon_svg} ${_png} ${size}
    DEPENDS oculix_assets ${_icon_svg} VERBATIM)
  list(APPEND _pngs ${_png})
  install(FILES ${_png} DESTINATION share/icons/hicolor/${size}x${size}/apps)
endforeach()
add_custom_target(oculix_manual ALL DEPENDS ${_pdfs} ${_pngs})

include(GNUInstallDirs)
install(TARGETS Oculix RUNTIME DESTINATION ${OCULIX_PROGRAM_INSTALL_DIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/resources/svrdata DESTINATION ${OCULIX_PROGRAM_INSTALL_DIR})
install(FILES ${_pdfs} DESTINATION ${OCULIX_PROGRAM_INSTALL_DIR})
foreach(b ${OCULIX_BRAND_LINKS})
  install(FILES ${_progdir}/${b} ${_progdir}/${b}_EN.pdf ${_progdir}/${b}_CN.pdf
    DESTINATION ${OCULIX_PROGRAM_INSTALL_DIR})
endforeach()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/bin-link)
file(CREATE_LINK ../${OCULIX_PROGRAM_INSTALL_DIR}/Oculix ${PROJECT_BINARY_DIR}/bin-link/oculix SYMBOLIC)
install(FILES ${PROJECT_BINARY_DIR}/bin-link/oculix DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/resources/desktop/${OCULIX_APP_ID}.desktop
  DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${PROJECT_SOURCE_DIR}/resources/desktop/${OCULIX_APP_ID}.metainfo.xml
  DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${_icon_svg} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
  RENAME ${OCULIX_APP_ID}.svg)
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

set(CPACK_PACKAGE_NAME oculix)
set(CPACK_PACKAGE_VENDOR "The Oculix developers")
set(CPACK_PACKAGE_CONTACT "The Oculix developers <oculix@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Measure what a USB microscope camera shows")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, so no library dependency names them.
set(CPACK_DEBIAN_PACKAGE_DEPENDS
  "gstreamer1.0-plugins-base, gstreamer1.0-plugins-good, qt6-qpa-plugins, qt6-image-formats-plugins, libqt6svg6")
# The cameras a desktop offers through PipeWire (libcamera's, a sandbox's).
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-cjk, qt6-translations-l10n, xdg-utils, gstreamer1.0-pipewire, pipewire, wireplumber")
set(CPACK_STRIP_FILES ON)
include(CPack)
