# cmake --install makes the portable folder anywhere: the program with everything that it looks for
# beside itself. Nothing goes into the system's own folders, because Orvik writes beside its
# executable: without a --prefix the folder stands in the build tree.
#
# Two components are left to those who ask for them: "sample", the simulated archive with the
# command that opens the program on it, and "bundle", Qt and all that it needs and that not every
# desktop has. script/package hands out a folder with all of them and, as it goes to other machines,
# without "links".

if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
  set_property(CACHE CMAKE_INSTALL_PREFIX PROPERTY VALUE "${CMAKE_BINARY_DIR}/install")
endif()

set(programs orvik orvik-session)
install(TARGETS ${programs} RUNTIME DESTINATION . COMPONENT folder)
install(FILES LICENSE DESTINATION . COMPONENT folder)
install(FILES packaging/README DESTINATION . COMPONENT bundle EXCLUDE_FROM_ALL)
install(DIRECTORY doc DESTINATION . COMPONENT folder)
install(PROGRAMS packaging/register DESTINATION . COMPONENT folder)
install(FILES packaging/orvik.desktop.in packaging/orvik.metainfo.xml
  DESTINATION share COMPONENT folder)
install(DIRECTORY resources/images/ DESTINATION share COMPONENT folder
  FILES_MATCHING PATTERN "icon-*.png")

# What is there already, programs or settings, is the user's.
install(CODE "
  set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
  file(MAKE_DIRECTORY \"\${folder}/bin\" \"\${folder}/sys\" \"\${folder}/out\")
  if(NOT EXISTS \"\${folder}/sys/orvik.ini\")
    configure_file(\"${PROJECT_SOURCE_DIR}/packaging/orvik.ini\" \"\${folder}/sys/orvik.ini\" COPYONLY)
  endif()"
  COMPONENT folder)
install(CODE "
  set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\")
  foreach(helper \"${ORVIK_CURL}\" \"${ORVIK_FFMPEG}\")
    get_filename_component(name \"\${helper}\" NAME)
    if(EXISTS \"\${helper}\" AND NOT EXISTS \"\${folder}/bin/\${name}\")
      file(CREATE_LINK \"\${helper}\" \"\${folder}/bin/\${name}\" SYMBOLIC)
    endif()
  endforeach()"
  COMPONENT links)

install(TARGETS orvik-simulator RUNTIME DESTINATION sample COMPONENT sample EXCLUDE_FROM_ALL)
install(PROGRAMS packaging/try-sample DESTINATION . COMPONENT sample EXCLUDE_FROM_ALL)

# Libraries in lib/ come before the system's, also for those that need each other: only the older of
# the two kinds of run path is heeded for them as well.
set_target_properties(${programs} orvik-simulator PROPERTIES INSTALL_RPATH "$ORIGIN/lib")
foreach(program ${programs} orvik-simulator)
  target_link_options(${program} PRIVATE LINKER:--disable-new-dtags)
endforeach()

# A window on X11 (or XWayland), none at all, and the ways to type other scripts.
set(plugins)
foreach(plugin QXcbIntegrationPlugin QOffscreenIntegrationPlugin
               QComposePlatformInputContextPlugin QIbusPlatformInputContextPlugin)
  list(APPEND plugins $<TARGET_FILE:Qt5::${plugin}>)
endforeach()
list(TRANSFORM programs REPLACE "(.+)" "$<TARGET_FILE_NAME:\\1>" OUTPUT_VARIABLE names)
install(CODE "set(plugins \"${plugins}\")\nset(programs \"${names}\" sample/orvik-simulator)"
  COMPONENT bundle EXCLUDE_FROM_ALL)
install(SCRIPT cmake/BundleLibraries.cmake COMPONENT bundle EXCLUDE_FROM_ALL)
