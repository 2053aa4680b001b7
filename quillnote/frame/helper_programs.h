// Commands that hand over to programs and pages outside: the cloud programs and the help pages.
#pragma once

/// Starts the cloud client.
void qn8_quillNoteYun();
/// Starts the cloud push helper.
void qn8_runPush();
/// Opens the help on the phrase menus: the file of the phrase library, else the shipped page.
void QN8_menuToYun();
/// Opens the page about the cloud service.
void qn8_aboutYun();
/// Opens the home page.
void QN3_gotoWWW();
/// Opens the help page.
void QN3_HelpOnline();
