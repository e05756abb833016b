# cmake -D NM=... -D LIBRARY=... -D EXPECTED=... -P CheckExportedSymbols.cmake
# The library's visible symbols are those of the checked-in list, no more and no fewer.

execute_process(COMMAND ${NM} --dynamic --defined-only --demangle --format=just-symbols ${LIBRARY}
  OUTPUT_VARIABLE visible OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "> >" ">>" visible "${visible}") # some tools write it so
string(REPLACE "\n" ";" visible "${visible}")
list(SORT visible)
file(STRINGS ${EXPECTED} expected)
list(SORT expected)
if(NOT visible STREQUAL expected)
  list(JOIN visible "\n  " visible)
  list(JOIN expected "\n  " expected)
  message(FATAL_ERROR "Visible symbols:\n  ${visible}\nexpected by ${EXPECTED}:\n  ${expected}")
endif()
