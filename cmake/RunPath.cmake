# Sets a_result to the run path of programs in a_bin for libraries in a_lib. Both
# folders are relative to the prefix, or absolute. When a folder is absolute, no relative
# path would stay valid after a move of the prefix. The result is then a_fullLib, the
# full path of the libraries' folder.
function(relative_run_path a_result a_bin a_lib a_fullLib)
  if(IS_ABSOLUTE "${a_bin}" OR IS_ABSOLUTE "${a_lib}")
    set(path "${a_fullLib}")
  else()
    file(RELATIVE_PATH path "/${a_bin}" "/${a_lib}")
    set(path "$ORIGIN/${path}")
  endif()
  set(${a_result} "${path}" PARENT_SCOPE)
endfunction()
