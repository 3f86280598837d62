# Writes the source that tells commit and libraries, anew only when they are others.
execute_process(COMMAND git -C ${SOURCE} describe --always --dirty --abbrev=12 --exclude *
  OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
string(REPLACE ";" ", " libraries "${LIBRARIES}")
configure_file(${SOURCE}/cli/asking/build_info.cpp.in ${OUTPUT} @ONLY)
