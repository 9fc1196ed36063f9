# A first refinement from a CIF and a measured pattern of the shared validation data, with no
# hand edit: "kalden new --from-cif --data", a run below Rwp 30 %, then the printed steps one
# run each until the LaB6 cell is the certified one.
# Called by ctest with -DKALDEN=<binary> -DDATA=<tests/data> -DVALIDATION=<folder> -DWORK=<dir>.

if(NOT IS_DIRECTORY ${VALIDATION})
  message("SKIPPED: the shared validation data are not at ${VALIDATION}")
  return()
endif()

function(kalden dir)
  execute_process(COMMAND ${KALDEN} ${ARGN} WORKING_DIRECTORY ${dir} RESULT_VARIABLE code
                  OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT code EQUAL 0)
    message(FATAL_ERROR "kalden ${ARGN}: exit ${code}\n${out}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

# The last Rwp of the list file.
function(last_rwp list result)
  file(STRINGS ${list} lines REGEX "Rwp =")
  list(GET lines -1 last)
  string(REGEX REPLACE ".*Rwp = *([0-9.]+).*" "\\1" rwp "${last}")
  set(${result} ${rwp} PARENT_SCOPE)
endfunction()

function(new_project name cif data)
  set(dir ${WORK}/${name})
  file(REMOVE_RECURSE ${dir})
  file(MAKE_DIRECTORY ${dir})
  kalden(${dir} new ${name}.rec --from-cif ${cif} --data ${data})
  set(steps "${out}" PARENT_SCOPE)
  kalden(${dir} run ${name}.rec)
  last_rwp(${dir}/${name}.out rwp)
  if(rwp GREATER_EQUAL 30)
    message(FATAL_ERROR "${name}: Rwp ${rwp} % after the first run")
  endif()
  message("${name}: Rwp ${rwp} % after the first run")
endfunction()

new_project(ceria ${VALIDATION}/ceo2-aeris-udf/CeO2_COD9009008.cif
            ${VALIDATION}/ceo2-aeris-udf/2025_06_03_CeO2_3_60_8min.udf)
new_project(lab6 ${DATA}/main/first_run/LaB6.cif ${VALIDATION}/lab6-srm660-cuka-lab/NIST660CBI.xy)

# Each printed step "N. what: KEY fields" replaces the project's KEY line, between an update
# that takes the refined values and a run.
set(dir ${WORK}/lab6)
string(REGEX MATCHALL "\n  [1-5]\\. [^\n]*: [A-Z]+[^\n]*" lines "${steps}")
foreach(line ${lines})
  string(REGEX REPLACE ".*: ([A-Z]+)( [^\n]*)" "\\1\\2" record "${line}")
  string(SUBSTRING "${record}" 0 4 key)
  kalden(${dir} update lab6.rec)
  file(READ ${dir}/lab6.rec project)
  string(REGEX REPLACE "\n${key}[^\n]*" "\n${record}" project "${project}")
  file(WRITE ${dir}/lab6.rec "${project}")
  kalden(${dir} run lab6.rec)
endforeach()
kalden(${dir} update lab6.rec)
# Once more with everything on, so that the last shifts settle.
kalden(${dir} run lab6.rec)
kalden(${dir} update lab6.rec)
file(STRINGS ${dir}/lab6.rec cell REGEX "^CELL")
string(REGEX REPLACE "^CELL +([0-9.]+).*" "\\1" a "${cell}")
last_rwp(${dir}/lab6.out rwp)
message("LaB6 after the steps: a = ${a} A, Rwp ${rwp} %")
if(a LESS 4.1566 OR a GREATER 4.1572)
  message(FATAL_ERROR "LaB6: a = ${a} A, not 4.1569 +- 0.0003 (SRM 660b)")
endif()
