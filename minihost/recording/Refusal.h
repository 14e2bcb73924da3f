#pragma once

#include <QString>

/// Why the loader, which says only that it did, refused the file, and what can be made of it: a sentence
/// without the file's name.
QString fx_CauseOfRefusal(QString const& fileName);
