#[=======================================================================[.rst:
OrvGenerate
-----------

.. command:: orv_generate

  Generates sources from templates and adds them to a target::

    orv_generate(TARGET <target> TEMPLATE <template>... [MODELS <model>...]
                 [OUT <dir>] [EXTENSIONS <file>...] [SCRIPTS <file>...]
                 [OPTIONS <option>...] [RUN <name>]
                 [OUTPUTS <file>... [DEPENDS <dependency>...]])

  ``find_package(varn_filepackaging)`` provides this command, and so do
  ``add_subdirectory()`` and ``FetchContent`` with the sources of that package.

  The generated files become private sources of ``<target>``, and ``<dir>``
  becomes an include directory of it and of the targets that link to it.
  Relative paths begin at the current source directory, those of ``OUT`` at the
  current binary directory and those of ``OUTPUTS`` at ``OUT``.  Templates,
  scripts and extensions run in the current source directory.

  ``TARGET <target>``
    An executable or library.  With ``OUTPUTS``, it has to be a target of the
    current directory.

  ``TEMPLATE <template>...``
    The templates.  Others that they name are looked for beside them.

  ``MODELS <model>...``
    Each is a file, ``<name>=<file>`` or ``<name>=<pattern>``, as for the option
    ``--model`` of ``orv generate``.

  ``OUT <dir>``
    The folder for the generated files, ``<run>_generated`` by default.

  ``EXTENSIONS <file>...``
    Python files for ``--extend``.

  ``SCRIPTS <file>...``
    Python files for ``--script``.

  ``OPTIONS <option>...``
    More options of ``orv generate``, such as ``--set=size=3``.

  ``RUN <name>``
    The name of the run, ``<target>`` by default.  A run removes the files that
    it made before and no longer makes.  A second call for the same target needs
    a name of its own.

  ``OUTPUTS <file>...``
    Generate when ``<target>`` is built, and not when CMake configures.  The
    build fails when the run does not make exactly these files.  The target
    ``clean`` removes them, and with them what was written into user regions:
    leave ``OUTPUTS`` out where people write into generated files.

  ``DEPENDS <dependency>...``
    What else has to be up to date before the files are generated, as for
    ``add_custom_command()``.

  Without ``OUTPUTS``, the files are generated when CMake configures, so that
  they need not be known beforehand.  All that the run reads is entered in the
  directory property :prop_dir:`CMAKE_CONFIGURE_DEPENDS`: when some of it has
  changed, ``cmake --build`` configures again, and the same build compiles new
  files and leaves out those that are no longer made.

  With ``OUTPUTS``, models may be files that the build makes, and ``orv`` may be
  built by the same build.

  A run that fails, for example because of an error in a template, fails the
  configuration or the build, and the next build runs it again.

  The program is the one at ``ORV_EXECUTABLE``, a full path, if that variable is
  set, else the one that was installed or is built with this package, else the
  ``orv`` that :command:`find_program` finds.

Example:

.. code-block:: cmake

  find_package(varn_filepackaging REQUIRED)
  add_executable(app app.c)
  orv_generate(TARGET app TEMPLATE main.j2 MODELS model.yaml)

#]=======================================================================]

cmake_policy(PUSH)
cmake_policy(VERSION 3.23)

function(orv_generate)
  set(lists TEMPLATE MODELS EXTENSIONS SCRIPTS OPTIONS OUTPUTS DEPENDS)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "TARGET;OUT;RUN" "${lists}")
  _orv_check_arguments()
  if(NOT arg_RUN)
    set(arg_RUN "${arg_TARGET}")
  endif()
  _orv_claim_run("${arg_RUN}")
  if(NOT arg_OUT)
    set(arg_OUT "${arg_RUN}_generated")
  endif()
  cmake_path(ABSOLUTE_PATH arg_OUT BASE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}" NORMALIZE)
  foreach(kind TEMPLATE MODELS EXTENSIONS SCRIPTS)
    _orv_make_absolute(arg_${kind} "${CMAKE_CURRENT_SOURCE_DIR}")
  endforeach()

  set(reports "${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/orv/${arg_RUN}")
  set(arguments generate ${arg_TEMPLATE} "--run=${arg_RUN}" "--out=${arg_OUT}"
    "--depfile=${reports}.d")
  _orv_append_options(arguments --model ${arg_MODELS})
  _orv_append_options(arguments --extend ${arg_EXTENSIONS})
  _orv_append_options(arguments --script ${arg_SCRIPTS})
  list(APPEND arguments ${arg_OPTIONS})
  _orv_find_program()
  if(arg_OUTPUTS)
    _orv_generate_in_build()
  else()
    _orv_generate_now()
  endif()

  get_target_property(type ${arg_TARGET} TYPE)
  set(scope PUBLIC)
  if(type STREQUAL "INTERFACE_LIBRARY")
    set(scope INTERFACE)
  endif()
  target_include_directories(${arg_TARGET} ${scope} "$<BUILD_INTERFACE:${arg_OUT}>")
  target_sources(${arg_TARGET} PRIVATE ${sources})
endfunction()

# Generates while CMake configures. Sets `sources`.
macro(_orv_generate_now)
  if(program_targets)
    _orv_fail("orv is built by this build and cannot run while CMake configures; "
      "give OUTPUTS, or set ORV_EXECUTABLE to an orv that is there already")
  endif()
  execute_process(
    COMMAND "${program}" ${arguments} "--depfile-target=${reports}.d" "--outputs=${reports}.outputs"
    WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}"
    OUTPUT_VARIABLE listing OUTPUT_STRIP_TRAILING_WHITESPACE
    RESULT_VARIABLE result)
  if(result MATCHES "^[1-9]")
    _orv_fail("${program} ended with ${result}; its message is above")
  elseif(NOT result EQUAL 0)
    _orv_fail("${program} cannot be run: ${result}")
  endif()
  message(VERBOSE "${listing}")
  _orv_read_dependencies(dependencies "${reports}.d")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${program}" ${dependencies})
  file(STRINGS "${reports}.outputs" sources ENCODING UTF-8)
endmacro()

# Generates in the build: the stamp is new after each run, and outputs only when their bytes are.
# They are byproducts, because Make would touch outputs. Sets `sources`.
macro(_orv_generate_in_build)
  get_target_property(folder ${arg_TARGET} SOURCE_DIR)
  if(NOT folder STREQUAL CMAKE_CURRENT_SOURCE_DIR)
    _orv_fail("with OUTPUTS, expected a target of the directory ${CMAKE_CURRENT_SOURCE_DIR}; "
      "that of ${folder} cannot depend on what is generated here")
  endif()
  cmake_path(IS_PREFIX CMAKE_BINARY_DIR "${arg_OUT}" NORMALIZE is_disposable)
  if(NOT is_disposable)
    message(WARNING "orv_generate(TARGET ${arg_TARGET}): the target clean removes the OUTPUTS in "
      "${arg_OUT}, with all that was written into user regions; leave OUTPUTS out, or set OUT to a "
      "folder of the build")
  endif()
  _orv_append_options(arguments --expect ${arg_OUTPUTS})
  _orv_make_absolute(arg_OUTPUTS "${arg_OUT}")
  # Patterns are no files; the depfile has what they find.
  list(TRANSFORM arg_MODELS REPLACE "^[A-Za-z_][A-Za-z0-9_]*=" "")
  list(FILTER arg_MODELS EXCLUDE REGEX "[*?]|\\[")
  set(stamp "${reports}.stamp")
  _orv_forget_outdated("${stamp}" "${reports}.d")
  add_custom_command(
    OUTPUT "${stamp}"
    BYPRODUCTS ${arg_OUTPUTS}
    COMMAND "${program}" ${arguments} "--stamp=${stamp}"
    DEPENDS ${arg_TEMPLATE} ${arg_MODELS} ${arg_EXTENSIONS} ${arg_SCRIPTS} ${arg_DEPENDS}
      "${program}" ${program_targets}
    DEPFILE "${reports}.d"
    WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}"
    COMMENT "Generating sources of ${arg_TARGET}"
    VERBATIM)
  set(sources "${stamp}" ${arg_OUTPUTS})
endmacro()

# Removes the stamp if something in the depfile is newer or gone: in the first build after CMake has
# configured, Make does not know what is in depfiles.
function(_orv_forget_outdated stamp depfile)
  if(NOT EXISTS "${stamp}" OR NOT EXISTS "${depfile}")
    return()
  endif()
  _orv_read_dependencies(dependencies "${depfile}")
  foreach(dependency IN LISTS dependencies)
    if("${dependency}" IS_NEWER_THAN "${stamp}")
      file(REMOVE "${stamp}")
      return()
    endif()
  endforeach()
endfunction()

macro(_orv_check_arguments)
  if(NOT TARGET "${arg_TARGET}")
    _orv_fail("expected TARGET <target>, got \"${arg_TARGET}\", which is no target")
  endif()
  if(NOT arg_TEMPLATE)
    _orv_fail("expected TEMPLATE <template>...")
  endif()
  if(arg_UNPARSED_ARGUMENTS)
    _orv_fail("unexpected argument \"${arg_UNPARSED_ARGUMENTS}\"")
  endif()
  if(arg_DEPENDS AND NOT arg_OUTPUTS)
    _orv_fail("DEPENDS needs OUTPUTS: what the build makes is not there while CMake configures")
  endif()
endmacro()

function(_orv_fail)
  set(text "")
  math(EXPR last "${ARGC} - 1")
  foreach(position RANGE ${last})
    string(APPEND text "${ARGV${position}}")
  endforeach()
  message(FATAL_ERROR "orv_generate(TARGET ${arg_TARGET}): ${text}")
endfunction()

# Two runs of one name would remove each other's files.
function(_orv_claim_run run)
  if(NOT run MATCHES "^[A-Za-z0-9_.+-]+$")
    _orv_fail("RUN \"${run}\" has other characters than letters, digits and _ . + -")
  endif()
  set(key "${CMAKE_CURRENT_BINARY_DIR}/${run}")
  get_property(runs GLOBAL PROPERTY ORV_RUNS)
  if(key IN_LIST runs)
    _orv_fail("there is a run \"${run}\" in this directory already; "
      "give this one a name: RUN <name>")
  endif()
  set_property(GLOBAL APPEND PROPERTY ORV_RUNS "${key}")
endfunction()

# Puts relative paths below a folder. A name before "=" stays, and so do generator expressions.
function(_orv_make_absolute variable folder)
  set(paths "")
  foreach(entry IN LISTS ${variable})
    string(REGEX MATCH "^[A-Za-z_][A-Za-z0-9_]*=" name "${entry}")
    string(LENGTH "${name}" length)
    string(SUBSTRING "${entry}" ${length} -1 path)
    if(NOT path MATCHES "^\\$<")
      cmake_path(ABSOLUTE_PATH path BASE_DIRECTORY "${folder}" NORMALIZE)
    endif()
    list(APPEND paths "${name}${path}")
  endforeach()
  set(${variable} "${paths}" PARENT_SCOPE)
endfunction()

function(_orv_append_options variable option)
  set(values ${ARGN})
  list(TRANSFORM values PREPEND "${option}=")
  set(${variable} ${${variable}} ${values} PARENT_SCOPE)
endfunction()

# Sets `program`, the full path, and `program_targets`, what builds it in this build.
macro(_orv_find_program)
  set(program_targets "")
  if(NOT ORV_EXECUTABLE AND NOT TARGET varn::orv)
    find_program(ORV_EXECUTABLE orv)
  endif()
  if(ORV_EXECUTABLE)
    set(program "${ORV_EXECUTABLE}")
  elseif(TARGET varn::orv)
    get_property(program TARGET varn::orv PROPERTY IMPORTED_LOCATION)
    get_property(program_targets TARGET varn::orv PROPERTY ORV_BUILT_BY)
  else()
    _orv_fail("the command orv was not found; install it (the Debian package orv, the component "
      "python), build it (VARN_BUILD_PYTHON), or set ORV_EXECUTABLE")
  endif()
endmacro()

# The dependencies in a depfile of orv: each on a line of its own, blanks, "#" and ":" with a
# backslash before them, and "$" twice.
function(_orv_read_dependencies variable depfile)
  file(READ "${depfile}" text)
  string(REPLACE ";" "\\;" text "${text}")
  string(REGEX REPLACE " \\\\\n  " ";" lines "${text}")
  string(STRIP "${lines}" lines)
  list(POP_FRONT lines)
  string(REGEX REPLACE "\\\\([ #:])" "\\1" lines "${lines}")
  string(REPLACE "$$" "$" lines "${lines}")
  set(${variable} "${lines}" PARENT_SCOPE)
endfunction()

cmake_policy(POP)
