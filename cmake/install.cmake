# Installation (cmake --install, prefix configurable) and the Debian package
# (cpack -G DEB). Only the products are installed: klote, fisksrv and the job
# writer fiskjob; the simulators and demo tools stay in the build tree.
include(GNUInstallDirs)

foreach(program klote fisksrv fiskjob)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

install(FILES README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES demo/fisksrv.cfg demo/README.txt DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
install(PROGRAMS packaging/fisksrv-setup DESTINATION ${CMAKE_INSTALL_DATADIR}/klote)

# The unit names absolute paths and /etc depends on the prefix, which is only
# known when installing (cmake --install --prefix, or CPack's /usr).
install(CODE "
  set(KLOTE_SOURCE_DIR \"${PROJECT_SOURCE_DIR}\")
  set(KLOTE_STAGING_DIR \"${PROJECT_BINARY_DIR}/packaging\")
  set(KLOTE_BINDIR \"${CMAKE_INSTALL_BINDIR}\")
  set(KLOTE_DOCDIR \"${CMAKE_INSTALL_DOCDIR}\")
  include(\"${CMAKE_CURRENT_LIST_DIR}/install_service.cmake\")
")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME klote)
set(CPACK_PACKAGE_VERSION 0.1.0)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "warehouse, sales and fiscal printing for Polish trade")
set(CPACK_PACKAGE_CONTACT "klote developers <klote@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
# libpq is opened at run time (libpq.so.5), so shlibdeps cannot see it.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libpq5, passwd")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "logrotate")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "postgresql")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/packaging/debian/postinst
  ${PROJECT_SOURCE_DIR}/packaging/debian/prerm
  ${PROJECT_SOURCE_DIR}/packaging/debian/postrm
  ${PROJECT_SOURCE_DIR}/packaging/debian/conffiles)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
set(CPACK_STRIP_FILES ON)
include(CPack)
