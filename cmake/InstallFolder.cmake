# cmake --install makes the portable folder anywhere: the program with everything that it looks for
# beside itself. Nothing goes into the system's own folders, because Orvik writes beside its
# executable.

install(TARGETS orvik RUNTIME DESTINATION .)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION .)

# The links are made on the machine that runs the program, to the programs that it has.
install(CODE "
  set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin\")
  file(MAKE_DIRECTORY \"\${folder}\")
  foreach(helper \"${ORVIK_CURL}\" \"${ORVIK_FFMPEG}\")
    if(EXISTS \"\${helper}\")
      get_filename_component(name \"\${helper}\" NAME)
      file(CREATE_LINK \"\${helper}\" \"\${folder}/\${name}\" SYMBOLIC)
    endif()
  endforeach()")
