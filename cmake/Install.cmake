# What `cmake --install` puts where, relative to CMAKE_INSTALL_PREFIX
# (README, "Installing into an object manager"):
#
#   lib/cmpi/libqrxsmis.so                     the provider library
#   share/qrxsmis/mof/qrx_classes.mof          the vendor classes (on top of the DMTF schema)
#   share/qrxsmis/mof/qrx_interop.mof          those of them served in root/interop
#   share/qrxsmis/mof/cim_hierarchy.mof        the class hierarchy qrx-cim reads
#   share/qrxsmis/sfcb/qrxsmis.reg             sfcb's provider registration
#   share/qrxsmis/pegasus/qrxsmis-pegasus.mof  OpenPegasus's provider registration
#   bin/qrx-cim, bin/qrx-switchsim             the command-line CIM host and the simulated switch
#
# (lib, share and bin are CMAKE_INSTALL_LIBDIR, _DATADIR and _BINDIR.) CPack
# packs the same tree into qrxsmis_<version>_<arch>.deb under /usr.

install(TARGETS qrxsmis LIBRARY DESTINATION ${QRX_INSTALL_PROVIDERDIR})
install(FILES ${QRX_VENDOR_MOF} ${QRX_INTEROP_MOF} ${QRX_HIERARCHY_MOF} DESTINATION ${QRX_INSTALL_DATADIR}/mof)
install(FILES ${QRX_SFCB_REG} DESTINATION ${QRX_INSTALL_DATADIR}/sfcb)
install(FILES ${QRX_PEGASUS_REG} DESTINATION ${QRX_INSTALL_DATADIR}/pegasus)
install(TARGETS qrx-cim qrx-switchsim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qrxsmis)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "qrxsmis maintainers <qrxsmis@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "CMPI 2.0 SMI-S provider library of the Fibre Channel switch, with qrx-cim and qrx-switchsim")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6, libstdc++6")
include(CPack)
