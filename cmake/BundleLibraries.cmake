# Part of an installation: copies the plugins of Qt and all libraries into the folder, but for those
# that the system has to provide.

# A desktop has these, and must use its own. glibc and the compiler's libraries are as new as the
# newest program of the system; drivers for graphics belong to its kernel; libX11 and libxcb speak
# to its server, fontconfig reads its configuration and fonts, D-Bus its bus. What those need of
# each other (FreeType, HarfBuzz, GLib, zlib, expat) comes from where they come from: an older copy
# of ours would be loaded in its place.
set(provided
  # glibc
  ld-linux-x86-64 libc libdl libm libpthread libresolv librt libutil
  # the compiler's
  libgcc_s "libstdc\\+\\+"
  # X11
  libX11 libX11-xcb libXau libXdmcp libbsd libmd libxcb
  # graphics
  libEGL libGL libGLX libGLdispatch libOpenGL libdrm libgbm
  # fonts and text
  libexpat libfontconfig libfreetype libharfbuzz libz
  # the desktop's bus and main loop
  libdbus-1 libglib-2.0 libgthread-2.0)
list(JOIN provided "|" provided)

set(folder "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}")
list(TRANSFORM programs PREPEND "${folder}/")
file(GET_RUNTIME_DEPENDENCIES
  EXECUTABLES ${programs}
  MODULES ${plugins}
  PRE_EXCLUDE_REGEXES "^(${provided})\\.so"
  RESOLVED_DEPENDENCIES_VAR libraries
  UNRESOLVED_DEPENDENCIES_VAR missing)
if(missing)
  message(FATAL_ERROR "No library of this machine is ${missing}.")
endif()

foreach(library ${libraries})
  get_filename_component(name "${library}" NAME)
  file(MAKE_DIRECTORY "${folder}/lib")
  file(COPY_FILE "${library}" "${folder}/lib/${name}")
endforeach()
foreach(plugin ${plugins})
  get_filename_component(directory "${plugin}" DIRECTORY)
  get_filename_component(kind "${directory}" NAME)
  file(INSTALL "${plugin}" DESTINATION "${folder}/plugins/${kind}")
endforeach()

# For the program, and for its copy that try-sample makes.
foreach(place "" sample/)
  file(WRITE "${folder}/${place}qt.conf" "[Paths]\nPrefix=.\n")
endforeach()
foreach(name lib plugins doc)
  file(CREATE_LINK ../${name} "${folder}/sample/${name}" SYMBOLIC)
endforeach()
