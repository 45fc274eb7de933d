#pragma once

#include "platform/MessageBox.h"

// The program's message box as a QMessageBox: the caption, the text, the
// icon and buttons the flags name, the details behind "Show Details...".
// Returns the button pressed; closed without one, the safe answer. Without a
// QApplication the message goes to the log instead.
int ShowMessageBoxDialog(const MessageBoxRequest& request);

// Makes ShowMessageBoxDialog the box MessageBox() shows; the program does so
// at start-up.
void InstallMessageBoxDialog();
