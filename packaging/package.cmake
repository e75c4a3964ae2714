# Installation: the program and its folders lie together under lib/beastwright, with a link in bin. CPack makes the .deb.

install(TARGETS beastwright RUNTIME DESTINATION lib/beastwright)
install(DIRECTORY assets/alias assets/presets DESTINATION lib/beastwright)
install(DIRECTORY assets/readme/ DESTINATION lib/beastwright)
install(DIRECTORY samples/vorrel samples/tutorial DESTINATION lib/beastwright/samples)

file(CREATE_LINK ../lib/beastwright/beastwright ${CMAKE_BINARY_DIR}/packaging-link SYMBOLIC)
install(FILES ${CMAKE_BINARY_DIR}/packaging-link DESTINATION bin RENAME beastwright)

install(FILES packaging/example.beastwright.Beastwright.desktop DESTINATION share/applications)
install(FILES packaging/example.beastwright.Beastwright.metainfo.xml DESTINATION share/metainfo)
install(FILES packaging/beastwright-mime.xml DESTINATION share/mime/packages RENAME beastwright.xml)
install(FILES LICENSE DESTINATION share/doc/beastwright RENAME copyright)
install(FILES CHANGELOG.md DESTINATION share/doc/beastwright)
foreach(size 16 24 32 48 64 128 256)
  foreach(name apps/beastwright mimetypes/application-x-morvane-model mimetypes/application-x-beastwright-weights)
    get_filename_component(folder ${name} DIRECTORY)
    get_filename_component(file ${name} NAME)
    install(FILES assets/icon/beastwright-${size}.png
      DESTINATION share/icons/hicolor/${size}x${size}/${folder} RENAME ${file}.png)
  endforeach()
endforeach()
install(FILES assets/icon/beastwright.svg DESTINATION share/icons/hicolor/scalable/apps)

find_program(GZIP gzip)
if(GZIP)
  execute_process(COMMAND ${GZIP} -9nc ${CMAKE_SOURCE_DIR}/packaging/beastwright.1
    OUTPUT_FILE ${CMAKE_BINARY_DIR}/beastwright.1.gz)
  install(FILES ${CMAKE_BINARY_DIR}/beastwright.1.gz DESTINATION share/man/man1)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME beastwright)
set(CPACK_PACKAGE_VENDOR "The Beastwright developers")
set(CPACK_PACKAGE_CONTACT "The Beastwright developers <developers@beastwright.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Bone assignments for creature models")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Bone assignments for creature models
 Beastwright opens a creature's text model file (.mvm), shows it in a 3D view
 and gives each vertex of its skin and of its shadow to one bone: with a click
 or a box in the view, by mirroring, swapping, re-assigning or automatic
 assignment. It saves model files and binary weights files (.wif), makes new
 normals and prints reports.")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://beastwright.example/")
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libgl1-mesa-dri, fonts-liberation | fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils, qt6-wayland")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
include(CPack)
