# What the package holds outside /usr/lib/ostmake: wrappers on the PATH, man pages, the manual
# if it was built, and completion.
set(usr ${CPACK_TEMPORARY_DIRECTORY}/usr)
file(MAKE_DIRECTORY ${usr}/bin)
foreach(program IN ITEMS ostmake ostquery)
    # By the path by which it is called a program finds its root.
    file(WRITE ${usr}/bin/${program} "#!/bin/sh\nexec /usr/lib/ostmake/bin/${program} \"$@\"\n")
    file(CHMOD ${usr}/bin/${program} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                                 WORLD_EXECUTE)
    file(COPY ${CMAKE_CURRENT_LIST_DIR}/completion.bash DESTINATION ${usr}/share/bash-completion/completions)
    file(RENAME ${usr}/share/bash-completion/completions/completion.bash
         ${usr}/share/bash-completion/completions/${program})
endforeach()
file(MAKE_DIRECTORY ${usr}/share)
file(RENAME ${usr}/lib/ostmake/share/man ${usr}/share/man)
if(EXISTS ${usr}/lib/ostmake/share/doc)
    file(RENAME ${usr}/lib/ostmake/share/doc ${usr}/share/doc)
endif()
