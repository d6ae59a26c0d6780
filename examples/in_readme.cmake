# Fails unless the README contains the example word for word.
file(READ "${README}" readme)
file(READ "${EXAMPLE}" example)
string(FIND "${readme}" "${example}" position)
if(position LESS 0)
  message(FATAL_ERROR "${README} does not contain ${EXAMPLE}")
endif()
