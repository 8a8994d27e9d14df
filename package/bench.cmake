# What is installed beside the bench: a driver and a player to copy, documents, completion for shells, manual pages.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/template DESTINATION ${CMAKE_INSTALL_DATADIR}/mediaproxy COMPONENT mediaproxy-dev)
install(PROGRAMS ${PROJECT_SOURCE_DIR}/players/example.py DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
install(PROGRAMS ${PROJECT_SOURCE_DIR}/tools/shrink DESTINATION ${CMAKE_INSTALL_BINDIR} RENAME driverhost-shrink)
set(docs ${PROJECT_SOURCE_DIR}/docs)
install(FILES ${docs}/choices.md ${docs}/messages.md ${docs}/page.md ${docs}/players.md ${docs}/sessions.md
  ${docs}/writing-a-driver.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

set(bash_dir ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES completion.bash DESTINATION ${bash_dir} RENAME driverhost)
install(FILES completion.bash DESTINATION ${bash_dir} RENAME mpd-player)
install(FILES completion.zsh DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions RENAME _driverhost)

# add_manual_page(PAGE COMMAND DEPENDENCY): PAGE(1), made of the help that the command prints.
function(add_manual_page page command dependency)
  set(file ${CMAKE_CURRENT_BINARY_DIR}/${page}.1)
  set(maker ${CMAKE_CURRENT_SOURCE_DIR}/manual_page)
  add_custom_command(OUTPUT ${file}.gz
    COMMAND sh -c "${command} >${file}.help && ${maker} ${page} ${PROJECT_VERSION} <${file}.help >${file} && gzip -9nf ${file}"
    DEPENDS ${dependency} ${maker}
    VERBATIM)
  add_custom_target(manual_${page} ALL DEPENDS ${file}.gz)
  install(FILES ${file}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endfunction()
list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " run)
add_manual_page(driverhost "${run} $<TARGET_FILE:driverhost> --help" driverhost)
foreach(command replay live check)
  add_manual_page(driverhost-${command} "${run} $<TARGET_FILE:driverhost> ${command} --help" driverhost)
endforeach()
add_manual_page(mpd-player "${run} $<TARGET_FILE:mpd-player> --help" mpd-player)
set(shrink ${PROJECT_SOURCE_DIR}/tools/shrink)
add_manual_page(driverhost-shrink "sed -n '/^HELP/,/^\"\"\"/{//!p}' ${shrink}" ${shrink})
