# cmake --install makes the portable folder anywhere: the program with everything that it looks for
# beside itself. Nothing goes into the system's own folders, because Orvik writes beside its
# executable: without a --prefix the folder stands in the build tree.
# `cmake --build build/release --target package` packs the same folder as a tar.xz.

if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
  set_property(CACHE CMAKE_INSTALL_PREFIX PROPERTY VALUE "${CMAKE_BINARY_DIR}/install")
endif()

install(TARGETS orvik orvik-session RUNTIME DESTINATION .)
install(FILES LICENSE DESTINATION .)
install(DIRECTORY doc DESTINATION . OPTIONAL)
install(PROGRAMS packaging/register DESTINATION .)
install(FILES packaging/orvik.desktop.in packaging/orvik.metainfo.xml DESTINATION share)
install(DIRECTORY resources/images/ DESTINATION share FILES_MATCHING PATTERN "icon-*.png")

# Links, to the programs of the machine. What is there already, programs or settings, is the user's.
install(CODE "
  set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
  file(MAKE_DIRECTORY \"\${folder}/bin\" \"\${folder}/sys\")
  foreach(helper \"${ORVIK_CURL}\" \"${ORVIK_FFMPEG}\")
    get_filename_component(name \"\${helper}\" NAME)
    if(EXISTS \"\${helper}\" AND NOT EXISTS \"\${folder}/bin/\${name}\")
      file(CREATE_LINK \"\${helper}\" \"\${folder}/bin/\${name}\" SYMBOLIC)
    endif()
  endforeach()
  if(NOT EXISTS \"\${folder}/sys/orvik.ini\")
    configure_file(\"${PROJECT_SOURCE_DIR}/packaging/orvik.ini\" \"\${folder}/sys/orvik.ini\" COPYONLY)
  endif()")

set(CPACK_GENERATOR TXZ)
set(CPACK_PACKAGE_FILE_NAME orvik-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR})
include(CPack)
