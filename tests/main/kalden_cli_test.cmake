# Runs the command-line tool as a user would and checks its output and exit codes.
# Called by ctest with -DKALDEN=<binary> -DDATA=<tests/data>.

function(expect_run expected_code)
  execute_process(COMMAND ${KALDEN} ${ARGN} RESULT_VARIABLE code OUTPUT_VARIABLE out
                  ERROR_VARIABLE err)
  if(NOT code EQUAL expected_code)
    message(FATAL_ERROR "kalden ${ARGN}: exit ${code}, expected ${expected_code}\n${out}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
  set(err "${err}" PARENT_SCOPE)
endfunction()

expect_run(0 help)
if(NOT out MATCHES "\n  records +records as the store reads them\n")
  message(FATAL_ERROR "help does not list the records command:\n${out}")
endif()
expect_run(0 help records)
if(NOT out MATCHES "usage: kalden records FILE KEY")
  message(FATAL_ERROR "help records gives no usage:\n${out}")
endif()
expect_run(1 help nonsense)
expect_run(0 --version)
if(NOT out MATCHES "^kalden [0-9]+\\.[0-9]+\\.[0-9]+")
  message(FATAL_ERROR "unexpected version line: ${out}")
endif()
expect_run(1 frobnicate)
# Arguments that do not fit: the command's usage line from the table, exit code 1.
expect_run(1 records)
if(NOT err STREQUAL "usage: kalden records FILE KEY...\n")
  message(FATAL_ERROR "records without keys gives no usage:\n${err}")
endif()
expect_run(1 restore a.rec b.bck c)
if(NOT err STREQUAL "usage: kalden restore PROJECT [BACKUP]\n")
  message(FATAL_ERROR "restore with three arguments gives no usage:\n${err}")
endif()

# A missing file: the store's box on standard error, exit code 1.
expect_run(1 records ${DATA}/main/absent.rec CELL)
if(NOT err MATCHES "Error opening: .*absent.rec")
  message(FATAL_ERROR "no 'Error opening' box for a missing file:\n${err}")
endif()

# Hand-edited records as the store reads them, against the golden output.
expect_run(0 records ${DATA}/main/hand_edited.rec TITL cell xyz CXYZ XYZ LRES ZZZZ)
file(READ ${DATA}/main/hand_edited.records expected)
if(NOT out STREQUAL expected)
  file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/hand_edited.records.actual "${out}")
  message(FATAL_ERROR "records output differs from hand_edited.records:\n${out}")
endif()

# Space groups: the operators of a symbol, compact symbols converted, failures reset.
expect_run(0 spacegroup "P 21/C")
if(NOT out MATCHES "operators     4\n    1  x,y,z\n    2  -x,y\\+1/2,-z\\+1/2")
  message(FATAL_ERROR "unexpected spacegroup output:\n${out}")
endif()
expect_run(0 spacegroup Fd-3m --json)
if(NOT out MATCHES "\"operatorCount\": 192")
  message(FATAL_ERROR "unexpected spacegroup --json output:\n${out}")
endif()
expect_run(1 spacegroup "Q 9")
if(NOT err MATCHES "Spacegroup problems \\(1\\): Reset to P 1")
  message(FATAL_ERROR "no reset message for a bad symbol:\n${err}")
endif()
expect_run(1 spacegroup "P 1" --xml)

# Elements: table data at a wavelength, neutrons, unknown symbols.
expect_run(0 element Fe)
if(NOT out MATCHES "55.847" OR NOT out MATCHES "-1.1336")
  message(FATAL_ERROR "unexpected element output:\n${out}")
endif()
expect_run(0 element H --wavelength 0)
if(NOT out MATCHES "-3.739")
  message(FATAL_ERROR "no neutron scattering length for H:\n${out}")
endif()
expect_run(1 element Xx)
expect_run(1 element Fe --wavelength abc)

# Raw data: a pattern as the engine reads it; a missing file is refused.
expect_run(0 rawdata ${DATA}/main/three_points.xy --format 5 --points)
if(NOT out MATCHES "points            3" OR NOT out MATCHES "10.02000          7.0000")
  message(FATAL_ERROR "unexpected rawdata output:\n${out}")
endif()
expect_run(1 rawdata ${DATA}/main/absent.xy --format 5)
expect_run(1 rawdata ${DATA}/main/three_points.xy)

# Runs: a calculation writes its list, summary and Fourier files beside the working directory
# and no parameter file; an update without a parameter file fails.
set(run_dir ${CMAKE_CURRENT_BINARY_DIR}/kalden-run)
file(REMOVE_RECURSE ${run_dir})
file(MAKE_DIRECTORY ${run_dir})
file(COPY ${DATA}/engine/input/calculation.rec DESTINATION ${run_dir})
function(expect_run_in dir expected_code)
  execute_process(COMMAND ${KALDEN} ${ARGN} WORKING_DIRECTORY ${dir} RESULT_VARIABLE code
                  OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT code EQUAL expected_code)
    message(FATAL_ERROR "kalden ${ARGN}: exit ${code}, expected ${expected_code}\n${out}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()
expect_run_in(${run_dir} 0 run calculation.rec)
if(NOT out MATCHES "BRAGG R-FACTOR" OR NOT out MATCHES "seconds elapsed")
  message(FATAL_ERROR "unexpected run log:\n${out}")
endif()
foreach(made %calculation.out %calculation.sum %calculation.fou)
  if(NOT EXISTS ${run_dir}/${made})
    message(FATAL_ERROR "kalden run did not write ${made}")
  endif()
endforeach()
if(EXISTS ${run_dir}/%calculation.par)
  message(FATAL_ERROR "a calculation wrote a parameter file")
endif()
expect_run_in(${run_dir} 1 update calculation.rec)
expect_run_in(${run_dir} 1 run absent.rec)
if(NOT out MATCHES "Error opening or reading absent.rec" OR NOT out MATCHES "Refinement interupted")
  message(FATAL_ERROR "unexpected log of a missing project:\n${out}")
endif()
expect_run(1 run)

# Exit codes of runs: 0 converged, 1 no finite state to keep (the reason after "Refinement
# interupted"), 3 diverging with the best cycle kept; a batch gives the worst of its runs.
set(steps_dir ${CMAKE_CURRENT_BINARY_DIR}/kalden-steps)
file(REMOVE_RECURSE ${steps_dir})
file(COPY ${DATA}/main/steps/ DESTINATION ${steps_dir})
expect_run_in(${steps_dir} 0 run converging.rec)
if(NOT out MATCHES "\nCycle   1:  Rwp = +[0-9.]+  CHI2 = +[0-9.]+  max shift/esd +-?[0-9.]+ \\(.+\\)\n"
   OR NOT out MATCHES "\nOutcome: converged\n Rwp = +[0-9.]+  CHI2 = +[0-9.]+  GOF = +[0-9.]+\n"
   OR NOT out MATCHES "\nOutput: %converging.par\n")
  message(FATAL_ERROR "no cycle lines or closing summary:\n${out}")
endif()
file(READ ${steps_dir}/nonfinite.rec project_before)
expect_run_in(${steps_dir} 1 run nonfinite.rec)
if(NOT out MATCHES "Refinement interupted\n Non-finite calculated value at the start, point +[0-9]+")
  message(FATAL_ERROR "no reason after 'Refinement interupted':\n${out}")
endif()
file(READ ${steps_dir}/nonfinite.rec project_after)
if(NOT project_before STREQUAL project_after OR EXISTS ${steps_dir}/%nonfinite.par)
  message(FATAL_ERROR "a run without a finite state changed its files")
endif()
expect_run_in(${steps_dir} 3 run diverging.rec)
if(NOT out MATCHES "\nOutcome: diverging\n")
  message(FATAL_ERROR "no diverging outcome:\n${out}")
endif()
foreach(output %converging.out %converging.par %diverging.out %diverging.par %diverging.sum)
  file(READ ${steps_dir}/${output} text)
  if(text MATCHES "[Nn][Aa][Nn]|[Ii][Nn][Ff]")
    message(FATAL_ERROR "${output} holds a non-finite word")
  endif()
endforeach()
expect_run_in(${steps_dir} 3 run worst.mlt)
expect_run(0 help run)
if(NOT out MATCHES "exit code 0 converged" OR NOT out MATCHES "3 diverging")
  message(FATAL_ERROR "help run does not document the exit codes:\n${out}")
endif()

# The record reference: docs/records.md is what kalden keys --markdown prints, and every key
# that kalden keys lists has an entry of its own.
get_filename_component(ROOT ${DATA}/../.. ABSOLUTE)
expect_run(0 keys --markdown)
file(READ ${ROOT}/docs/records.md reference)
if(NOT out STREQUAL reference)
  file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/records.md.actual "${out}")
  message(FATAL_ERROR "docs/records.md is not what kalden keys --markdown prints; "
                      "regenerate it with: kalden keys --markdown > docs/records.md")
endif()
expect_run(0 keys)
string(REGEX MATCHALL "(^|\n)[A-Z0-9]+ ?  " listed "${out}")
list(LENGTH listed count)
if(count LESS 80)
  message(FATAL_ERROR "kalden keys lists ${count} keys:\n${out}")
endif()
foreach(line ${listed})
  string(STRIP "${line}" key)
  expect_run(0 keys ${key})
  if(NOT out MATCHES "^${key} +[A-Z][^\n]*\n  fields +[^\n]+\n  written .*\n  read by +[A-Za-z]")
    message(FATAL_ERROR "kalden keys ${key} gives no entry:\n${out}")
  endif()
  if(NOT reference MATCHES "\n\\| `${key} ?` \\|")
    message(FATAL_ERROR "docs/records.md has no row of ${key}")
  endif()
endforeach()
expect_run(0 keys xyz)
if(NOT out MATCHES "read +\\(A4,6X,I4,5F9.0,4I3\\)\n")
  message(FATAL_ERROR "kalden keys xyz does not give the layout the engine reads:\n${out}")
endif()
expect_run(1 keys QQQQ)

# kalden check on hand-edited mistakes in the corundum example: each is named with file, line
# and key; a pattern that is no scan (decimal commas, descending angles) is named at PWDT.
set(check_dir ${CMAKE_CURRENT_BINARY_DIR}/kalden-check)
file(REMOVE_RECURSE ${check_dir})
file(COPY ${ROOT}/examples/corundum/ DESTINATION ${check_dir})
file(READ ${check_dir}/corundum.rec corundum)
file(STRINGS ${check_dir}/corundum.xy points)
list(REVERSE points)
string(REPLACE ";" "\n" descending "${points}")
file(WRITE ${check_dir}/descending.xy "${descending}\n")
file(COPY ${DATA}/engine/bad_patterns/decimal_commas.xy DESTINATION ${check_dir})
expect_run_in(${check_dir} 0 check corundum.rec)
function(expect_check name code old new note)
  string(FIND "${corundum}" "${old}" at)
  if(at LESS 0)
    message(FATAL_ERROR "check corpus ${name}: '${old}' is not in corundum.rec")
  endif()
  string(REPLACE "${old}" "${new}" edited "${corundum}")
  file(WRITE ${check_dir}/${name}.rec "${edited}")
  expect_run_in(${check_dir} ${code} check ${name}.rec)
  if(NOT out MATCHES "(^|\n)${name}.rec:${note}")
    message(FATAL_ERROR "kalden check ${name}.rec does not say ${name}.rec:${note}:\n${out}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()
expect_check(column6 2 "CHWT           0.000     0.000     1.000" "CHWT 1 1 1 0 0 0"
             "22: CHWT: warning: \" 1 1 1\" in columns 5 to 10 is not read")
expect_check(delimiter 1 "XYZ       Al     1" "XYZ Al 1        "
             "25: XYZ: warning: \"Al 1\" in columns 5 to 10[^\n]*\ndelimiter.rec:25: XYZ: error: Error reading XYZ")
expect_check(extra_atom 2 "CXYZ Al"
             "XYZ       Al     1  0.00000  0.00000  0.30000  1.00000  0.31000  3  0  0  0\nCXYZ Al"
             "27: XYZ: warning: line not read: only the first 2 lines")
expect_check(extra_type 2 "ANOM      O            0.04920   0.03220"
             "ANOM      O            0.04920   0.03220\nANOM      Fe           0.0       0.0"
             "10: ANOM: warning: line not read: only the first 2 lines")
expect_check(site_factor 2 "0.31000  3  0  0  0" "0.31000  0  0  0  0"
             "25: XYZ: warning: site factor blank or 0: the space group gives 3")
expect_check(special 2 "CXYZ Al          0.000" "CXYZ Al          1.000"
             "27: CXYZ: warning: x of Al is refined, but the symmetry of its site fixes it")
expect_check(symbol 1 "R -3 C" "R -3 Q" "16: SPGR: error: [^\n]*SYMBOL R -3 Q")
expect_check(no_data 1 "corundum.xy" "absent.xy"
             "4: PWDT: error: [^\n]*raw data file: absent.xy\n")
expect_check(descending 1 "corundum.xy" "descending.xy" "4: PWDT: error: [^\n]*descending.xy")
expect_check(commas 1 "corundum.xy" "decimal_commas.xy"
             "4: PWDT: error: [^\n]*decimal_commas.xy")
expect_check(atom_type 1 "XYZ       O      2" "XYZ       O      7"
             "26: XYZ: error: atom type 7 points beyond the 2 ANOM lines")

# kalden run prints the same notes first and goes on: the example with a site factor of 0.
execute_process(COMMAND ${KALDEN} run site_factor.rec WORKING_DIRECTORY ${check_dir}
                OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT out MATCHES "^site_factor.rec:25: XYZ: warning: site factor blank or 0[^\n]*\n.*\nCycle   1:")
  message(FATAL_ERROR "kalden run does not print the check's note before its cycles:\n${out}")
endif()

# The default outputs of a project lie beside it whatever the current directory, where the
# plot and the update look for them.
set(beside ${CMAKE_CURRENT_BINARY_DIR}/kalden-beside)
file(REMOVE_RECURSE ${beside})
file(MAKE_DIRECTORY ${beside}/proj ${beside}/work)
file(COPY ${DATA}/engine/input/pattern.xy DESTINATION ${beside}/proj)
configure_file(${DATA}/engine/output/refinement.rec ${beside}/proj/x.rec COPYONLY)
expect_run_in(${beside}/work 0 run ../proj/x.rec)
foreach(made %x.out %x.par %x.sum %x.fou)
  if(NOT EXISTS ${beside}/proj/${made})
    message(FATAL_ERROR "kalden run ../proj/x.rec did not write ${made} beside the project")
  endif()
endforeach()
file(GLOB stray ${beside}/work/*)
if(stray)
  message(FATAL_ERROR "kalden run ../proj/x.rec wrote into the current directory: ${stray}")
endif()
expect_run_in(${beside}/work 0 plot ../proj/x.rec --out x.png)
expect_run_in(${beside}/work 0 update ../proj/x.rec)
file(READ ${beside}/proj/x.rec updated)
file(READ ${beside}/proj/%x.par refined)
if(NOT updated STREQUAL refined)
  message(FATAL_ERROR "kalden update ../proj/x.rec did not take the refined parameter file")
endif()

# Two processes on two projects of one folder at once: each parameter file is the one of a
# serial run, byte for byte. Each project has a title of its own, so that a mix shows.
set(together ${CMAKE_CURRENT_BINARY_DIR}/kalden-together)
file(REMOVE_RECURSE ${together})
file(MAKE_DIRECTORY ${together})
file(COPY ${DATA}/engine/input/pattern.xy DESTINATION ${together})
file(READ ${DATA}/engine/output/refinement.rec project)
foreach(name one two)
  string(REGEX REPLACE "^TITL[^\n]*" "TITL      project ${name}" titled "${project}")
  file(WRITE ${together}/${name}.rec "${titled}")
  expect_run_in(${together} 0 run ${name}.rec)
  file(RENAME ${together}/%${name}.par ${together}/${name}.serial)
endforeach()
set(both [=[
"$0" run one.rec >one.log 2>&1 & first=$!
"$0" run two.rec >two.log 2>&1 & second=$!
wait $first; one=$?
wait $second; echo "$one $?"
]=])
foreach(round 1 2 3)
  execute_process(COMMAND sh -c "${both}" ${KALDEN} WORKING_DIRECTORY ${together}
                  OUTPUT_VARIABLE codes)
  if(NOT codes STREQUAL "0 0\n")
    message(FATAL_ERROR "two runs at once, round ${round}: exit codes ${codes}")
  endif()
  foreach(name one two)
    execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${together}/%${name}.par
                            ${together}/${name}.serial RESULT_VARIABLE differs)
    if(differs)
      message(FATAL_ERROR "two runs at once, round ${round}: %${name}.par is not the serial one")
    endif()
    file(REMOVE ${together}/%${name}.par)
  endforeach()
endforeach()
file(GLOB left ${together}/*.tmp)
if(left)
  message(FATAL_ERROR "two runs at once left temporary files behind: ${left}")
endif()

# A project from CIFs and a pattern: the format from the extension, the radiation by name, a
# phase for each CIF with the CIF's name as title; a pattern that is no scan is refused with
# its file and line, and options that do not fit give the usage.
set(from_cif ${CMAKE_CURRENT_BINARY_DIR}/kalden-from-cif)
file(REMOVE_RECURSE ${from_cif})
file(MAKE_DIRECTORY ${from_cif})
file(COPY ${DATA}/main/three_points.xy DESTINATION ${from_cif})
set(lab6 ${DATA}/main/first_run/LaB6.cif)
expect_run_in(${from_cif} 0 new two.rec --from-cif ${lab6} --from-cif ${DATA}/tools/cif_import/classic.cif
              --data three_points.xy --radiation MoKa)
if(NOT out MATCHES "Data format 5 from the extension of three_points.xy"
   OR NOT out MATCHES "1\\. the cell of phase 1: CCEL +11\\.000 +11\\.000 +11\\.000")
  message(FATAL_ERROR "unexpected output of new --from-cif --data:\n${out}")
endif()
file(STRINGS ${from_cif}/two.rec phases REGEX "^PHNA")
file(STRINGS ${from_cif}/two.rec records REGEX "^(TITL|PWDT|FRMT|ELAM|JOBT|XYZ )")
list(LENGTH phases phase_count)
if(NOT phase_count EQUAL 2
   OR NOT records MATCHES "TITL      Lanthanum hexaboride \\+ "
   OR NOT records MATCHES "PWDT      three_points.xy"
   OR NOT records MATCHES "FRMT          5"
   OR NOT records MATCHES "ELAM        0.709317  0.713543  0.500000"
   OR NOT records MATCHES "JOBT          0    4    2   -1"
   # the second CIF's elements follow the first one's La and B
   OR NOT records MATCHES "XYZ       Fe1      3 ")
  message(FATAL_ERROR "unexpected records of new --from-cif --data:\n${records}")
endif()
# A further phase from a CIF into the project: the phases there keep their titles.
expect_run_in(${from_cif} 0 new two.rec --use-existing --from-cif ${lab6} --data three_points.xy)
file(STRINGS ${from_cif}/two.rec titles REGEX "^PHTI")
if(NOT titles MATCHES "^PHTI      Lanthanum hexaboride *;PHTI      quartz_like *;PHTI      Lanthanum")
  message(FATAL_ERROR "the phases' titles were not kept:\n${titles}")
endif()
expect_run_in(${from_cif} 1 new commas.rec --from-cif ${lab6}
              --data ${DATA}/engine/bad_patterns/decimal_commas.xy)
if(NOT out MATCHES "Angles do not rise at line 3 of [^\n]*decimal_commas.xy")
  message(FATAL_ERROR "a pattern with decimal commas was not refused:\n${out}")
endif()
if(EXISTS ${from_cif}/commas.rec OR EXISTS ${from_cif}/commas.par)
  message(FATAL_ERROR "a refused pattern left its half project behind")
endif()
expect_run(1 new x.rec --from-cif ${lab6} --radiation CuKb)
expect_run(1 new x.rec --from-cif ${lab6} --radiation CuKa)
if(NOT err MATCHES "^usage: kalden new")
  message(FATAL_ERROR "radiation without data gives no usage:\n${err}")
endif()
