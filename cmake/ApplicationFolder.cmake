# Orvik keeps its files beside its executable, so every program that runs the engine, each test
# included, is built into a folder of its own with the helper programs linked under bin/.

find_program(ORVIK_CURL curl)
find_program(ORVIK_FFMPEG ffmpeg)
foreach(helper CURL FFMPEG)
  if(NOT ORVIK_${helper})
    message(WARNING "${helper} was not found; put it at bin/ beside the program before a session is started.")
  endif()
endforeach()

# Puts links to the system's curl and ffmpeg into FOLDER/bin.
function(orvik_link_helpers folder)
  file(MAKE_DIRECTORY "${folder}/bin")
  if(ORVIK_CURL)
    file(CREATE_LINK "${ORVIK_CURL}" "${folder}/bin/curl" SYMBOLIC)
  endif()
  if(ORVIK_FFMPEG)
    file(CREATE_LINK "${ORVIK_FFMPEG}" "${folder}/bin/ffmpeg" SYMBOLIC)
  endif()
endfunction()

# Builds TARGET into FOLDER and makes FOLDER an application folder.
function(orvik_application_folder target folder)
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${folder}")
  orvik_link_helpers("${folder}")
endfunction()
