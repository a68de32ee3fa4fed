# Sets the run path of programs in a_bin for libraries in a_lib, both folders relative
# to the prefix. When one of them is absolute, no relative path survives a move of the
# prefix, and the result is the library's full path a_fullLib.
function(relative_run_path a_result a_bin a_lib a_fullLib)
  if(IS_ABSOLUTE "${a_bin}" OR IS_ABSOLUTE "${a_lib}")
    set(path "${a_fullLib}")
  else()
    file(RELATIVE_PATH path "/${a_bin}" "/${a_lib}")
    set(path "$ORIGIN/${path}")
  endif()
  set(${a_result} "${path}" PARENT_SCOPE)
endfunction()
