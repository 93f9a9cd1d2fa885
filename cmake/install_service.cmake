# Run at install time: the systemd unit of fisksrv and its logrotate snippet,
# with the paths of the prefix being installed to. Configuration files go to
# /etc for the prefix /usr and to <prefix>/etc otherwise, as GNU does.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(sysconf_dir /etc)
else()
  set(sysconf_dir ${CMAKE_INSTALL_PREFIX}/etc)
endif()
set(FISKSRV_BINARY ${CMAKE_INSTALL_PREFIX}/${KLOTE_BINDIR}/fisksrv)
set(FISKSRV_CONFIG ${sysconf_dir}/klote/fisksrv.cfg)
set(KLOTE_DOC_DIR ${CMAKE_INSTALL_PREFIX}/${KLOTE_DOCDIR})
configure_file(${KLOTE_SOURCE_DIR}/packaging/fisksrv.service.in ${KLOTE_STAGING_DIR}/fisksrv.service @ONLY)

file(INSTALL ${KLOTE_STAGING_DIR}/fisksrv.service DESTINATION ${CMAKE_INSTALL_PREFIX}/lib/systemd/system)
file(INSTALL ${KLOTE_SOURCE_DIR}/packaging/fisksrv.logrotate DESTINATION ${sysconf_dir}/logrotate.d
  RENAME fisksrv)
