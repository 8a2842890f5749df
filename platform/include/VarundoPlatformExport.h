#ifndef VARUNDOPLATFORMEXPORT_H
#define VARUNDOPLATFORMEXPORT_H

#include <QtGlobal>

/// Marks what the reference platform exports. A host with its own platform defines VARUNDO_PLATFORM_EXTERNAL
/// and links its classes as it likes.
#if defined(VARUNDO_PLATFORM_EXTERNAL)
    #define VARUNDO_PLATFORM_EXPORT
#elif defined(VARUNDO_BUILDING_PLATFORM)
    #define VARUNDO_PLATFORM_EXPORT Q_DECL_EXPORT
#else
    #define VARUNDO_PLATFORM_EXPORT Q_DECL_IMPORT
#endif

#endif
