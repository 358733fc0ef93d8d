# SPDX-FileCopyrightText: 2026 The trelvik developers
# SPDX-License-Identifier: GPL-2.0-or-later

# A Debian package of the installed tree: `cpack -G DEB` in a build tree configured
# with the prefix /usr (scripts/package does all of it).

set(NIMB_PACKAGE_MAINTAINER "The trelvik developers <developers@trelvik.org>"
    CACHE STRING "Maintainer field of the Debian package")
set(NIMB_PACKAGE_HOMEPAGE "https://trelvik.org/nimb-event-viewer")
# Debian revision of this packaging of the upstream version.
set(NIMB_PACKAGE_REVISION 1)
# The date of the newest changelog entry: a fixed one keeps the package reproducible.
set(NIMB_PACKAGE_DATE "Mon, 23 Nov 2026 00:00:00 +0000")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The trelvik developers")
set(CPACK_PACKAGE_CONTACT "${NIMB_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "viewer for the system's security events journal")
set(CPACK_PACKAGE_DESCRIPTION
"System events journal is a desktop viewer for the security events that the
system logger writes as JSON lines. It reads the journal and its plain or
compressed rotations page by page, filters and searches events, summarises them
by priority and source over the last hour, day and week, shows single events
with all their parameters, and exports, copies and prints them.

An administrator can switch desktop notifications for chosen message IDs on and
off: a privileged helper, authorised through polkit, removes the logging
service's notification rules and restarts the service.

The package also holds nimb-events, a command-line tool that counts, summarises
and pages journals, and nimb-gen-journal, which generates test journals.")

# The privileged helper's polkit policy has an absolute destination: with DESTDIR
# every file lands under the package root, whatever its kind of destination.
set(CPACK_SET_DESTDIR ON)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${NIMB_PACKAGE_REVISION})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${NIMB_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${NIMB_PACKAGE_HOMEPAGE})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Without a polkit daemon on the system bus neither helper action can be authorised.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "polkitd")
# The notification rules are the logging service's; it reads them and is restarted.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "syslog-ng-core")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

# Manual pages of the three programs, for plain installs and the package alike.
set(NIMB_MANPAGE_nimb-event-viewer [=[
.TH NIMB-EVENT-VIEWER 1 "@NIMB_MANPAGE_DATE@" "nimb-event-viewer @PROJECT_VERSION@" "User Commands"
.SH NAME
nimb-event-viewer \- viewer for the system's security events journal
.SH SYNOPSIS
.B nimb-event-viewer
.RB [ \-\-toggle ]
.SH DESCRIPTION
.B nimb-event-viewer
("System events journal") shows the security events journal that the system
logger writes to
.IR /quorv/log/velmo/events ,
one JSON object per line, page by page in a table.
It opens the main journal, its plain or compressed rotations and any other journal
file; filters and searches events; summarises them by priority and source over the
last hour, day and week; shows single events with all their parameters; and copies,
exports (JSON, CSV, raw lines) and prints them.
.PP
An administrator can switch desktop notifications for chosen message IDs on and off.
Removing a notification rule of the logging service and restarting the service are
done by a privileged helper, after authentication through polkit.
.PP
Only one viewer runs per session: a second start brings the running one to the front
and exits with status 255.
.SH OPTIONS
.TP
.B \-\-toggle
Ask the running viewer to show its window again when it is hidden or minimised.
.SH FILES
.TP
.I /quorv/log/velmo/events
The main journal; its rotations lie beside it.
.TP
.I /etc/syslog-ng/conf.d/mod\-velmo\-*.conf
Notification rules of the logging service, one per message ID.
.TP
.I ~/.config/trelvik/nimb\-event\-viewer.conf
The viewer's settings.
.SH SEE ALSO
.BR nimb\-events (1),
.BR syslog\-ng (8)
]=])
set(NIMB_MANPAGE_nimb-events [=[
.TH NIMB-EVENTS 1 "@NIMB_MANPAGE_DATE@" "nimb-event-viewer @PROJECT_VERSION@" "User Commands"
.SH NAME
nimb-events \- count, summarise and page a security events journal
.SH SYNOPSIS
.B nimb-events count
.I file
.RI [ "filter options" ]
.RB [ \-\-workers
.IR n ]
.br
.B nimb-events summary
.I file
.br
.B nimb-events page
.I file
.B \-\-page
.I p
.B \-\-per\-page
.I n
.RI [ "filter options" ]
.RB [ \-\-raw ]
.SH DESCRIPTION
.B nimb-events
reads a security events journal (plain, or a compressed rotation read through a
private temporary copy) with the engine of
.BR nimb\-event\-viewer (1).
.B count
prints the number of events, all or those passing the filter;
.B summary
prints the events by priority and source in the last hour, day and week as JSON;
.B page
prints page
.I p
(from 1) of
.I n
events, one JSON object per event, or the journal lines as they stand with
.BR \-\-raw .
.SH OPTIONS
.TP
.BI \-\-workers " n"
Threads for filtered counts and the summary; one per processor by default.
.TP
.BI \-\-from " datetime\fR, " \-\-to " datetime"
Only events at or after, at or before this ISO 8601 date-time.
.TP
.BI \-\-id " message-id"
Only events with this message ID.
.TP
.BI \-\-type " type"
Only events of this event type (repeatable).
.TP
.BI \-\-type\-excludes " text"
Hide events whose type contains this text.
.TP
.BI \-\-name\-contains " text\fR, " \-\-name\-excludes " text"
Only events whose name contains, or hide those whose name contains, this text.
.TP
.BI \-\-priority " priority"
Only events of this priority, a word such as
.B error
or a number 1\-8 (repeatable, or comma-separated).
.TP
.BI \-\-search " keyword"
Only events with this keyword in one of their texts; refined by
.B \-\-case\-sensitive
and
.BR \-\-whole\-word .
.TP
.BI \-\-param " key" = value
Only events whose built-in parameter has this value, e.g.
.B uid=1000
(repeatable).
.TP
.BI \-\-custom " name" = value
Only events whose custom parameter has this value (repeatable).
.SH EXIT STATUS
0 on success, 1 when the file cannot be read or is not a journal, 2 for usage errors.
.SH SEE ALSO
.BR nimb\-event\-viewer (1),
.BR nimb\-gen\-journal (1)
]=])
set(NIMB_MANPAGE_nimb-gen-journal [=[
.TH NIMB-GEN-JOURNAL 1 "@NIMB_MANPAGE_DATE@" "nimb-event-viewer @PROJECT_VERSION@" "User Commands"
.SH NAME
nimb-gen-journal \- write a synthetic security events journal
.SH SYNOPSIS
.B nimb-gen-journal
.RI [ options ]
.SH DESCRIPTION
.B nimb-gen-journal
writes a synthetic security events journal, one JSON object per line, for
demonstrations, tests and benchmarks. The output is the same for the same seed,
options and
.BR \-\-now .
.SH OPTIONS
.TP
.BI \-\-out " file"
Write to
.I file
(standard output when absent or "\-").
.TP
.BI \-\-lines " n"
Number of lines to write (10000 by default).
.TP
.BI \-\-size " bytes"
Approximate size to write instead of a line count; suffixes K, M, G.
.TP
.BI \-\-seed " n"
Seed of the pseudo-random sequence (taken from the clock by default).
.TP
.BI \-\-days " n"
Spread the times over the last
.I n
days (10 by default).
.TP
.BI \-\-malformed\-permille " n"
Share of broken lines, per thousand (5 by default).
.TP
.B \-\-append
Append to the file given by
.BR \-\-out ;
times continue from now, a few seconds apart.
.TP
.BI \-\-now " time"
Take
.I time
(ISO 8601 or seconds since the epoch) as the current time.
.TP
.BI \-\-catalogue " dir"
Take events, sources and custom parameters from the system tree
.I dir
instead of the built-in demo tree.
.SH SEE ALSO
.BR nimb\-events (1)
]=])
set(NIMB_MANPAGE_DATE 2026-11-23)
set(NIMB_MANPAGE_DIR ${CMAKE_BINARY_DIR}/man)
set(NIMB_MANPAGES)
foreach(program nimb-event-viewer nimb-events nimb-gen-journal)
    string(CONFIGURE "${NIMB_MANPAGE_${program}}" page @ONLY)
    string(REGEX REPLACE "^\n" "" page "${page}")
    file(WRITE ${NIMB_MANPAGE_DIR}/${program}.1 "${page}")
    list(APPEND NIMB_MANPAGES ${NIMB_MANPAGE_DIR}/${program}.1.gz)
endforeach()
# -n: no name or time stamp in the header, so equal input gives an equal archive.
find_program(NIMB_GZIP gzip REQUIRED)
function(nimb_gzip directory)
    execute_process(COMMAND ${NIMB_GZIP} -9nf ${ARGN} WORKING_DIRECTORY ${directory} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "Cannot compress ${ARGN} in ${directory}: ${result}")
    endif()
endfunction()
nimb_gzip(${NIMB_MANPAGE_DIR} nimb-event-viewer.1 nimb-events.1 nimb-gen-journal.1)
install(FILES ${NIMB_MANPAGES} DESTINATION ${KDE_INSTALL_MANDIR}/man1)

# Debian's own documentation of the package: its copyright in the machine-readable
# format and its changelog. Installed only into the package, not by a plain install.
set(NIMB_PACKAGE_DOCDIR ${CMAKE_BINARY_DIR}/package-doc)
file(WRITE ${NIMB_PACKAGE_DOCDIR}/copyright
"Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: ${PROJECT_NAME}
Upstream-Contact: ${NIMB_PACKAGE_MAINTAINER}
Source: ${NIMB_PACKAGE_HOMEPAGE}

Files: *
Copyright: 2026 The trelvik developers
License: GPL-2+
 This program is free software; you can redistribute it and/or modify it under
 the terms of the GNU General Public License as published by the Free Software
 Foundation; either version 2 of the License, or (at your option) any later
 version (SPDX-License-Identifier: GPL-2.0-or-later).
 .
 This program is distributed in the hope that it will be useful, but WITHOUT ANY
 WARRANTY; without even the implied warranty of MERCHANTABILITY or FITNESS FOR A
 PARTICULAR PURPOSE. See the GNU General Public License for more details.
 .
 On Debian systems, the complete text of the GNU General Public License version 2
 can be found in /usr/share/common-licenses/GPL-2.
")
file(WRITE ${NIMB_PACKAGE_DOCDIR}/changelog.Debian
"${PROJECT_NAME} (${PROJECT_VERSION}-${NIMB_PACKAGE_REVISION}) unstable; urgency=medium

  * Release ${PROJECT_VERSION}.

 -- ${NIMB_PACKAGE_MAINTAINER}  ${NIMB_PACKAGE_DATE}
")
nimb_gzip(${NIMB_PACKAGE_DOCDIR} changelog.Debian)
# Tags that do not apply to a package made outside the Debian archive, or that
# mistake sample data for what the program does.
file(WRITE ${NIMB_PACKAGE_DOCDIR}/lintian-overrides
"# Built outside the Debian archive: there is no bug report for it to close.
${PROJECT_NAME}: initial-upload-closes-no-bugs
# The generator writes the path into sample events; it never opens it.
${PROJECT_NAME}: uses-dpkg-database-directly [usr/bin/nimb-gen-journal]
")
install(FILES ${NIMB_PACKAGE_DOCDIR}/copyright ${NIMB_PACKAGE_DOCDIR}/changelog.Debian.gz
    DESTINATION ${KDE_INSTALL_DATAROOTDIR}/doc/${PROJECT_NAME}
    COMPONENT debian-doc EXCLUDE_FROM_ALL)
install(FILES ${NIMB_PACKAGE_DOCDIR}/lintian-overrides
    DESTINATION ${KDE_INSTALL_DATAROOTDIR}/lintian/overrides
    RENAME ${PROJECT_NAME}
    COMPONENT debian-doc EXCLUDE_FROM_ALL)
# Stripping leaves the compilers' notes behind; Debian's packages carry none.
set(NIMB_PACKAGE_STRIP [=[
file(GLOB_RECURSE files LIST_DIRECTORIES false "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*")
foreach(file IN LISTS files)
    file(READ "${file}" magic LIMIT 4 HEX)
    if(magic STREQUAL "7f454c46" AND NOT IS_SYMLINK "${file}")
        execute_process(COMMAND "@CMAKE_OBJCOPY@" --remove-section=.comment --remove-section=.note "${file}"
            RESULT_VARIABLE result)
        if(NOT result EQUAL 0)
            message(FATAL_ERROR "Cannot remove the notes of ${file}")
        endif()
    endif()
endforeach()
]=])
string(CONFIGURE "${NIMB_PACKAGE_STRIP}" NIMB_PACKAGE_STRIP @ONLY)
file(WRITE ${CMAKE_BINARY_DIR}/NimbPackageStrip.cmake "${NIMB_PACKAGE_STRIP}")
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_BINARY_DIR}/NimbPackageStrip.cmake)

# The whole project, then the component a plain install leaves out.
set(CPACK_INSTALL_CMAKE_PROJECTS
    "${CMAKE_BINARY_DIR};${PROJECT_NAME};ALL;/"
    "${CMAKE_BINARY_DIR};${PROJECT_NAME};debian-doc;/")

include(CPack)
