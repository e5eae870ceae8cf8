# What an installation holds: the host program, the template tool, the plug-in with the two libraries it shares with a host, the interface
# that a foreign host compiles against, and the manual page.
include(CMakePackageConfigHelpers)

install(TARGETS tarn tarn-format RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS TarnFlows QuayCommands Singletons LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES Tools/TRN/TarnFlows/Interface/ITrellisPlugin.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarn)
install(FILES docs/tarn.1 docs/tarn-format.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

set_target_properties(TarnPluginInterface PROPERTIES EXPORT_NAME PluginInterface)
install(TARGETS TarnPluginInterface EXPORT TarnTargets INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarn)
install(EXPORT TarnTargets NAMESPACE Tarn:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tarn)
configure_package_config_file(cmake/TarnConfig.cmake.in ${CMAKE_BINARY_DIR}/TarnConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tarn PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/TarnConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/TarnConfig.cmake ${CMAKE_BINARY_DIR}/TarnConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Tarn)

# The load of the burn-in test, where the plug-in looks for it from the host program's folder.
install(TARGETS bit MemTest64 RUNTIME DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn/workload)
install(FILES Tools/TRN/TarnWorkload/Workload.bitcfg Tools/TRN/TarnWorkload/Workload_CRK.bitcfg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn/workload)
