# The tests' scratch directory DIR: MODE "fresh" empties it before the tests, MODE "check" fails
# when the tests left anything in it.
if(MODE STREQUAL "fresh")
  file(REMOVE_RECURSE ${DIR})
  file(MAKE_DIRECTORY ${DIR})
  return()
endif()
file(GLOB left RELATIVE ${DIR} ${DIR}/*)
if(left)
  list(LENGTH left count)
  message(FATAL_ERROR "${count} files left in ${DIR} by the tests: ${left}")
endif()
