# Fails when the language core reaches Qt: an include of a Qt header in its
# sources, a Qt library among what it links, or a Qt include folder or
# definition on the compile line of one of its files.
set(problems "")

file(GLOB_RECURSE sources ${CORE_DIR}/*.cpp ${CORE_DIR}/*.h)
foreach(f ${sources})
  file(STRINGS ${f} includes REGEX "^[ \t]*#[ \t]*include[ \t]*[<\"](Q|qt)")
  foreach(line ${includes})
    list(APPEND problems "${f}: ${line}")
  endforeach()
endforeach()

file(READ ${LINKS} links)
if(links MATCHES "[Qq]t[0-9]?::|[Qq]t6|libQt")
  list(APPEND problems "zv_core links or includes Qt: ${links}")
endif()

if(EXISTS ${COMPILE_COMMANDS})
  file(READ ${COMPILE_COMMANDS} json)
  string(JSON n LENGTH "${json}")
  math(EXPR last "${n} - 1")
  foreach(i RANGE ${last})
    string(JSON file GET "${json}" ${i} file)
    string(JSON command GET "${json}" ${i} command)
    if(file MATCHES "^${CORE_DIR}/" AND command MATCHES "[Qq]t6|QT_")
      list(APPEND problems "${file} is compiled with Qt on its command line")
    endif()
  endforeach()
endif()

if(problems)
  list(JOIN problems "\n  " text)
  message(FATAL_ERROR "The language core must not depend on Qt:\n  ${text}")
endif()
