#pragma once

#include <QString>

// Owner-only folders and files for what the user typed or chose (the queue with its passwords,
// the settings, the caches): 0700 and 0600 whatever the process's umask, on Unix. Elsewhere the
// per-user locations are private already and these only create what is missing.
namespace PrivateFiles {

// Creates `path` and any missing folder above it owner-only, and makes `path` itself owner-only
// if it was there already. False when it cannot be created or is not a folder.
bool makeFolder(const QString &path);

// Creates `path` empty and owner-only if it is missing, else makes it owner-only. Its folder must
// exist. False when it can be neither created nor changed.
bool makeFile(const QString &path);

// Makes `path` owner-only if it exists; false only when it exists and cannot be changed.
bool restrictFile(const QString &path);

// Makes the folder of the application's settings file and the file itself owner-only. Call it
// once the application's name is set, before anything writes a setting.
void protectSettings();

} // namespace PrivateFiles
