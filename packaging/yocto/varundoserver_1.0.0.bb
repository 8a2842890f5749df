SUMMARY = "ZEL interface server for pipe-inspection camera control units"
DESCRIPTION = "Inside a unit's recording application it lets an outside controller drive the on-screen display and \
    read measurement values, over a USB serial adapter or over TCP."
SECTION = "libs"
# The owner has not chosen a licence yet. Until then nobody but the owner may hand out images with it.
LICENSE = "CLOSED"

DEPENDS = "qtserialport"

# Where your copy of the sources is, and the commit that you have tested.
SRC_URI = "git://git.example.com/varundoserver.git;protocol=https;branch=main"
SRCREV = "0000000000000000000000000000000000000000"
S = "${WORKDIR}/git"

inherit cmake_qt5 pkgconfig bash-completion

EXTRA_OECMAKE += "-DVARUNDO_BUILD_TESTS=OFF"

# A unit needs neither; both are for a bench.
PACKAGECONFIG ??= ""
PACKAGECONFIG[simulator] = "-DVARUNDO_BUILD_SIMULATOR=ON,-DVARUNDO_BUILD_SIMULATOR=OFF"
PACKAGECONFIG[tools] = "-DVARUNDO_BUILD_TOOLS=ON,-DVARUNDO_BUILD_TOOLS=OFF"

do_install:append() {
    install -D -m 0644 ${S}/packaging/udev/70-varundo-serial.rules \
        ${D}${nonarch_base_libdir}/udev/rules.d/70-varundo-serial.rules
}

# The server itself is in ${PN}. A unit wants the udev rules too, once they name its own group.
PACKAGES =+ "${PN}-platform ${PN}-client ${PN}-simulator ${PN}-zelctl ${PN}-udev"
FILES:${PN}-platform = "${libdir}/libvarundoplatform.so.*"
FILES:${PN}-client = "${libdir}/libzelclient.so.*"
FILES:${PN}-simulator = "${bindir}/varundo-simulator"
FILES:${PN}-zelctl = "${bindir}/zelctl"
FILES:${PN}-udev = "${nonarch_base_libdir}/udev/rules.d"

# Qt loads these by itself, so that no binary names them.
RDEPENDS:${PN}-simulator = "qtbase-plugins"
RRECOMMENDS:${PN}-simulator = "ttf-dejavu-sans"
