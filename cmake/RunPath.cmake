# The run path of programs in a_bin for libraries in a_lib, two folders below the
# prefix. When one of them is outside it there is no relative path that a moved
# prefix would keep: then the library's full path a_fullLib is it.
function(relative_run_path a_result a_bin a_lib a_fullLib)
  if(IS_ABSOLUTE "${a_bin}" OR IS_ABSOLUTE "${a_lib}")
    set(path "${a_fullLib}")
  else()
    file(RELATIVE_PATH path "/${a_bin}" "/${a_lib}")
    set(path "$ORIGIN/${path}")
  endif()
  set(${a_result} "${path}" PARENT_SCOPE)
endfunction()
