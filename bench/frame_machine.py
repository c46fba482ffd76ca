#!/usr/bin/python3
"""Lays out the databases of a launch for the measurement of the update's frame.

usage: frame_machine.py FOLDER WINDOWS_FOLDER PATCHES STEPS

In FOLDER, which programs under Wine know as WINDOWS_FOLDER: the 17 databases of the product, all of
the newest version, so that no patch applies to them; PATCHES patches of STEPS steps each; the
configuration file; connections.txt with the connection string of each file, in the order in which
the launcher opens them; and registered.txt with the two that the registry has to hold.
ODBCSYSINI names the driver.
"""
import os
import shutil
import sys

import pyodbc

NAMES = """QuillRules QuillAddition QuillDetails QuillBase QuillProfiles2010 QuillSettings
QuillControlStructure QuillBitmaps QuillProject QuillCurrentProject QuillCurrentAddIn
QuillProjectStandards QuillDetailsBase QuillKernelEnvironment QuillJointsCalculation NVCMapping2010
QuillGratings""".split()
REGISTERED = ("QuillProfiles2010", "NVCMapping2010")
PROJECT = "QuillCurrentProject"
DRIVER = "DRIVER={Kestrel ODBC Driver};UID=;PWD=;DBQ="


def make_database(path, major, steps):
    open(path, "wb").close()
    connection = pyodbc.connect(DRIVER + os.path.abspath(path), autocommit=False)
    execute = connection.execute
    execute("CREATE TABLE KFVersion ([Attribute] TEXT(255) NOT NULL,[Value] TEXT(255) NOT NULL)")
    for attribute in ("MajorNumber", "MinorNumber", "CommSPNumber", "BuildNumber",
                      "CommMajorVersion", "CommMinorVersion"):
        value = major if attribute == "MajorNumber" else 1
        execute(f"INSERT INTO KFVersion VALUES ('{attribute}','{value}')")
    execute("CREATE TABLE Info ([Name] TEXT(50),[Value] MEMO,[Type] TEXT(50))")
    execute("INSERT INTO Info VALUES ('Bolts','Name;Name_F;Name_NL;Name_D','LanguageDependent')")
    if steps:
        execute("CREATE TABLE UpdateTable ([ID] LONG NOT NULL,[DatabaseName] TEXT(50),"
                "[Source] TEXT(50),[Target] TEXT(50),[DeleteRows] BIT,[Recreate] BIT,"
                "[CreateIfMissing] BIT,PRIMARY KEY ([ID]))")
        for step in range(steps):
            execute(f"INSERT INTO UpdateTable VALUES ({step},'{NAMES[step % len(NAMES)]}',"
                    f"'Source{step}','Target{step}',0,0,1)")
    connection.commit()
    connection.close()


def main():
    folder, windows_folder = sys.argv[1:3]
    patches, steps = int(sys.argv[3]), int(sys.argv[4])
    shutil.rmtree(folder, ignore_errors=True)
    for inner in ("DatabaseUpdate/Projects", "Configuration", "Kernel/Data"):
        os.makedirs(os.path.join(folder, inner))

    def windows_path(relative):
        return windows_folder + "\\" + relative.replace("/", "\\")

    files = []
    for number in range(patches):
        relative = f"DatabaseUpdate/Patch{number:02}.mdb"
        # The newest first, so that the sort has the most to do.
        make_database(os.path.join(folder, relative), patches - number, steps)
        files.append(relative)
    sources, registered = [], []
    for name in NAMES:
        relative = "Kernel/Data/model.mdb" if name == PROJECT else name + ".mdb"
        make_database(os.path.join(folder, relative), 1000, 0)
        files.append(relative)
        if name in REGISTERED:
            registered.append(f"{name}\t{DRIVER}{windows_path(relative)}")
        elif name != PROJECT:
            sources.append(f'<DataSource Platform="x64" Name="{name}" '
                           f'Value="{DRIVER}{windows_path(relative)}" />')
    lists = {
        "Configuration/DatabaseConfiguration.xml":
            ["<Kestrelforge>", *sources, "</Kestrelforge>"],
        "connections.txt": [DRIVER + windows_path(relative) for relative in files],
        "registered.txt": registered,
    }
    for relative, lines in lists.items():
        with open(os.path.join(folder, relative), "w", encoding="ascii", newline="\n") as file:
            file.write("\n".join(lines) + "\n")


main()
