# Installation: the programs and their folders lie together under lib/beastwright, with links in bin. CPack makes the
# .deb.

install(TARGETS beastwright bwrt bwrt-picture RUNTIME DESTINATION lib/beastwright)
if(TARGET bwrt-import)
  install(TARGETS bwrt-import RUNTIME DESTINATION lib/beastwright)
endif()
install(PROGRAMS packaging/beastwright-import DESTINATION lib/beastwright)
install(DIRECTORY packaging/blender DESTINATION lib/beastwright FILES_MATCHING PATTERN "*.py")
install(DIRECTORY assets/alias assets/presets DESTINATION lib/beastwright PATTERN ".*" EXCLUDE)
install(DIRECTORY assets/readme/ DESTINATION lib/beastwright PATTERN ".*" EXCLUDE)
install(DIRECTORY samples/vorrel samples/tutorial DESTINATION lib/beastwright/samples PATTERN ".*" EXCLUDE)

foreach(program beastwright bwrt)
  file(CREATE_LINK ../lib/beastwright/${program} ${CMAKE_BINARY_DIR}/packaging-link-${program} SYMBOLIC)
  install(FILES ${CMAKE_BINARY_DIR}/packaging-link-${program} DESTINATION bin RENAME ${program})
endforeach()

install(FILES packaging/example.beastwright.Beastwright.desktop packaging/example.beastwright.Beastwright.Import.desktop
  DESTINATION share/applications)
configure_file(packaging/example.beastwright.Beastwright.metainfo.xml.in
  ${CMAKE_BINARY_DIR}/example.beastwright.Beastwright.metainfo.xml @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/example.beastwright.Beastwright.metainfo.xml DESTINATION share/metainfo)
install(FILES packaging/beastwright-mime.xml DESTINATION share/mime/packages RENAME beastwright.xml)
install(FILES packaging/beastwright.thumbnailer DESTINATION share/thumbnailers)
install(FILES packaging/bwrt.bash DESTINATION share/bash-completion/completions RENAME bwrt)
install(FILES LICENSE DESTINATION share/doc/beastwright RENAME copyright)
foreach(size 16 24 32 48 64 128 256)
  foreach(name apps/beastwright mimetypes/application-x-morvane-model mimetypes/application-x-beastwright-weights)
    get_filename_component(folder ${name} DIRECTORY)
    get_filename_component(file ${name} NAME)
    install(FILES assets/icon/beastwright-${size}.png
      DESTINATION share/icons/hicolor/${size}x${size}/${folder} RENAME ${file}.png)
  endforeach()
endforeach()
install(FILES assets/icon/beastwright.svg DESTINATION share/icons/hicolor/scalable/apps)
foreach(type application-x-morvane-model application-x-beastwright-weights)
  install(FILES assets/icon/beastwright.svg DESTINATION share/icons/hicolor/scalable/mimetypes RENAME ${type}.svg)
endforeach()

find_program(GZIP gzip)
if(GZIP)
  configure_file(packaging/changelog.in ${CMAKE_BINARY_DIR}/changelog @ONLY)
  configure_file(packaging/beastwright.1.in ${CMAKE_BINARY_DIR}/beastwright.1 @ONLY)
  configure_file(packaging/bwrt.1.in ${CMAKE_BINARY_DIR}/bwrt.1 @ONLY)
  foreach(text ${CMAKE_BINARY_DIR}/beastwright.1 ${CMAKE_BINARY_DIR}/bwrt.1 ${CMAKE_SOURCE_DIR}/CHANGELOG.md ${CMAKE_BINARY_DIR}/changelog)
    get_filename_component(name ${text} NAME)
    execute_process(COMMAND ${GZIP} -9nc ${text} OUTPUT_FILE ${CMAKE_BINARY_DIR}/${name}.gz COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS CHANGELOG.md)
  install(FILES ${CMAKE_BINARY_DIR}/beastwright.1.gz ${CMAKE_BINARY_DIR}/bwrt.1.gz DESTINATION share/man/man1)
  install(FILES ${CMAKE_BINARY_DIR}/changelog.gz DESTINATION share/doc/beastwright)
  install(FILES ${CMAKE_BINARY_DIR}/CHANGELOG.md.gz DESTINATION share/doc/beastwright RENAME NEWS.md.gz)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME beastwright)
set(CPACK_PACKAGE_VENDOR "The Beastwright developers")
set(CPACK_PACKAGE_CONTACT "The Beastwright developers <developers@beastwright.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Bone assignments for creature models")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Beastwright opens a creature's text model file (.mvm), shows it in a 3D view
and gives each vertex of its skin and of its shadow to one bone: with a click
or a box in the view, by mirroring, swapping, re-assigning or automatic
assignment. It saves model files and binary weights files (.wif), makes new
normals and prints reports. The program bwrt does the same from a command line,
checks and compares models, and takes them to modelling programs and back as
glTF. An add-on for Blender does that in one step.")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://beastwright.example/")
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libgl1-mesa-dri, fonts-liberation | fonts-dejavu-core")
# The desktop's files need what reads them: those packages bring the triggers that keep its databases.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "xdg-utils, qt6-wayland, shared-mime-info, desktop-file-utils, hicolor-icon-theme")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "blender, zenity | kdialog | x11-utils")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
include(CPack)
