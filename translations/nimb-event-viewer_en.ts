<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name>LogInfoWindow</name>
    <message numerus="yes">
        <source>%n kilobytes</source>
        <translation>
            <numerusform>%n kilobyte</numerusform>
            <numerusform>%n kilobytes</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n megabytes</source>
        <translation>
            <numerusform>%n megabyte</numerusform>
            <numerusform>%n megabytes</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n gigabytes</source>
        <translation>
            <numerusform>%n gigabyte</numerusform>
            <numerusform>%n gigabytes</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n bytes</source>
        <translation>
            <numerusform>%n byte</numerusform>
            <numerusform>%n bytes</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n skipped</source>
        <comment>malformed lines</comment>
        <translation>
            <numerusform>%n skipped</numerusform>
            <numerusform>%n skipped</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message numerus="yes">
        <source>Printed %n events.</source>
        <translation>
            <numerusform>Printed %n event.</numerusform>
            <numerusform>Printed %n events.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Exported %n events to %1.</source>
        <translation>
            <numerusform>Exported %n event to %1.</numerusform>
            <numerusform>Exported %n events to %1.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>TimelineWidget</name>
    <message numerus="yes">
        <source>%n events from %1 to %2.
Emergency: %3
Alert: %4
Critical: %5
Error: %6
Warning: %7
Notice: %8
Info: %9
Debug: %10
Unknown priority: %11</source>
        <translation>
            <numerusform>%n event from %1 to %2.
Emergency: %3
Alert: %4
Critical: %5
Error: %6
Warning: %7
Notice: %8
Info: %9
Debug: %10
Unknown priority: %11</numerusform>
            <numerusform>%n events from %1 to %2.
Emergency: %3
Alert: %4
Critical: %5
Error: %6
Warning: %7
Notice: %8
Info: %9
Debug: %10
Unknown priority: %11</numerusform>
        </translation>
    </message>
</context>
</TS>
