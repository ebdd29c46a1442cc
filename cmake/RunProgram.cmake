# Runs one conformance program, tests/programs/AREA/NAME.zvc, under
# zvrun --headless --dump-vars (plus the flags in NAME.args, and the event
# script NAME.events and the answers NAME.answers when they are there) and
# compares what it prints with NAME.expected; on a mismatch it shows a
# unified diff.
#
#   cmake -DZVRUN=... -DPROGRAM=... [-DEXTRA_FLAGS=...] [-DREBASELINE=ON] -P RunProgram.cmake
#
# With REBASELINE the output is written to NAME.expected instead, but only
# when zvrun exited with 0, so that a crash or a usage error never becomes
# the expected output.
#
# Machine-dependent paths become placeholders: $ZVDIR (folder of zvrun),
# $PROGRAMDIR (folder of the program), $WORKDIR (the run's working folder),
# $HOME. The predeclared variables that still hold the values they have when
# a run begins (core/predeclared.expected) are left out of both sides, so an
# expected file shows only what its program changed.
#
# A line "'@repeat COUNT TEXT" (a comment to the language) stands for COUNT
# lines of TEXT: programs at the size limits are made when they run instead of
# lying in the tree at megabytes.
cmake_minimum_required(VERSION 3.25)

get_filename_component(dir ${PROGRAM} DIRECTORY)
get_filename_component(name ${PROGRAM} NAME_WE)
get_filename_component(area ${dir} NAME)
get_filename_component(programs ${dir} DIRECTORY)
set(id ${area}/${name})
set(expectedFile ${dir}/${name}.expected)

set(args --headless --dump-vars ${EXTRA_FLAGS})
if(EXISTS ${dir}/${name}.args)
  file(READ ${dir}/${name}.args extra)
  string(STRIP "${extra}" extra)
  separate_arguments(extra UNIX_COMMAND "${extra}")
  list(APPEND args ${extra})
endif()
# A window program's user: NAME.events beside it is its event script.
if(EXISTS ${dir}/${name}.events)
  list(APPEND args --events ${dir}/${name}.events)
endif()
# Its answers to boxes and dialogues, one a line.
if(EXISTS ${dir}/${name}.answers)
  list(APPEND args --answers-file ${dir}/${name}.answers)
endif()

string(RANDOM LENGTH 8 tag)
set(work /tmp/zvtest-${area}-${name}-${tag})
file(MAKE_DIRECTORY ${work})

# Every program opens with a comment line that says what it checks.
file(STRINGS ${PROGRAM} first LIMIT_COUNT 1)
if(NOT first MATCHES "^(#ZV7#)?'")
  file(REMOVE_RECURSE ${work})
  message(FATAL_ERROR "${id}: the first line must be a comment (') that says what the program checks")
endif()

set(run ${PROGRAM})
file(READ ${PROGRAM} source)
if(source MATCHES "'@repeat ")
  set(generated "")
  while(source MATCHES "'@repeat ([0-9]+) ?([^\n]*)\n?")
    set(count ${CMAKE_MATCH_1})
    set(text "${CMAKE_MATCH_2}")
    string(FIND "${source}" "${CMAKE_MATCH_0}" at)
    string(LENGTH "${CMAKE_MATCH_0}" len)
    string(SUBSTRING "${source}" 0 ${at} before)
    math(EXPR after "${at} + ${len}")
    string(SUBSTRING "${source}" ${after} -1 source)
    string(REPEAT "${text}\n" ${count} lines)
    string(APPEND generated "${before}${lines}")
  endwhile()
  string(APPEND generated "${source}")
  # The made program lies in a folder of its own, which the output names as
  # the program's folder.
  set(dir ${work}/program)
  set(run ${dir}/${name}.zvc)
  file(WRITE ${run} "${generated}")
endif()

# Whatever a program adds to the desktop (a start-up entry) stays in its folder.
execute_process(COMMAND ${CMAKE_COMMAND} -E env XDG_CONFIG_HOME=${work}/config
                        ${ZVRUN} ${args} --config-dir ${work} ${run}
                WORKING_DIRECTORY ${work}
                OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE rc)
file(REMOVE_RECURSE ${work})

get_filename_component(zvdir ${ZVRUN} DIRECTORY)
string(REPLACE "${zvdir}" "$ZVDIR" out "${out}")
string(REPLACE "${dir}" "$PROGRAMDIR" out "${out}")
string(REPLACE "${work}" "$WORKDIR" out "${out}")
if(DEFINED ENV{HOME} AND NOT "$ENV{HOME}" STREQUAL "")
  string(REPLACE "$ENV{HOME}" "$HOME" out "${out}")
endif()

# Drops each line of the reference from text; lines are matched whole.
set(reference ${programs}/core/predeclared.expected)
function(tira_predeclaradas var)
  if(NOT EXISTS ${reference} OR id STREQUAL "core/predeclared")
    return()
  endif()
  file(STRINGS ${reference} lines REGEX "^{\"var\":")
  set(t "\n${${var}}")
  foreach(line IN LISTS lines)
    string(REPLACE "\n${line}\n" "\n" t "${t}")
  endforeach()
  string(SUBSTRING "${t}" 1 -1 t)
  set(${var} "${t}" PARENT_SCOPE)
endfunction()
tira_predeclaradas(out)
string(REPLACE ";" "" flavour "${EXTRA_FLAGS}")
set(cmp ${CMAKE_CURRENT_BINARY_DIR}/zvdiff-${area}-${name}${flavour})

if(REBASELINE)
  if(NOT rc EQUAL 0)
    message("refused   ${id}: zvrun exited with ${rc}\n${err}")
    return()
  endif()
  set(old "")
  if(EXISTS ${expectedFile})
    file(READ ${expectedFile} old)
  endif()
  if(old STREQUAL out)
    message("unchanged ${id}")
  else()
    file(WRITE ${expectedFile} "${out}")
    message("rewrote   ${id}")
  endif()
  return()
endif()

if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${id}: zvrun exited with ${rc}\n${err}")
endif()
if(NOT EXISTS ${expectedFile})
  message(FATAL_ERROR "${id}: no ${name}.expected; `./zv rebaseline ${id}` writes it from this run:\n${out}")
endif()
file(READ ${expectedFile} expected)
tira_predeclaradas(expected)
if(NOT out STREQUAL expected)
  # Both sides as compared, so the diff shows only what differs.
  file(WRITE ${cmp}.expected "${expected}")
  file(WRITE ${cmp}.actual "${out}")
  string(STRIP "this run ${EXTRA_FLAGS}" run)
  execute_process(COMMAND diff -u --label ${id}.expected --label "${id} (${run})"
                          ${cmp}.expected ${cmp}.actual
                  OUTPUT_VARIABLE delta)
  # A long diff is cut: its first lines tell where things went wrong.
  string(REGEX REPLACE "[^\n]" "" ends "${delta}")
  string(LENGTH "${ends}" total)
  if(total GREATER 60)
    set(shown "")
    foreach(i RANGE 1 60)
      string(FIND "${delta}" "\n" nl)
      math(EXPR next "${nl} + 1")
      string(SUBSTRING "${delta}" 0 ${next} line)
      string(SUBSTRING "${delta}" ${next} -1 delta)
      string(APPEND shown "${line}")
    endforeach()
    math(EXPR rest "${total} - 60")
    set(delta "${shown}... and ${rest} lines more\n")
  endif()
  # Printed as it stands: message() would wrap the diff's lines.
  execute_process(COMMAND ${CMAKE_COMMAND} -E echo_append "${delta}${err}")
  message(FATAL_ERROR "${id}: the output differs from ${name}.expected (the diff above; both sides are in "
                      "${cmp}.*); `./zv rebaseline ${id}` takes this run as expected")
endif()
file(REMOVE ${cmp}.expected ${cmp}.actual)
