#ifndef VARUNDOPLATFORMEXPORT_H
#define VARUNDOPLATFORMEXPORT_H

#include <QtGlobal>

/// Marks what the reference platform exports. A host with its own platform defines VARUNDO_PLATFORM_EXTERNAL
/// and links its classes as it likes.
///
/// Such a host compiles, besides its own sources, what moc makes of the headers with Q_OBJECT: ITolvarReel,
/// ITolvarRts, ITolvarCrawler, ITolvarCamera, ITolvarCameraPositionSensor, CVideoOverlayElement,
/// CVideoOverlayText and CVideoOverlayManager (with CMake: AUTOMOC, and the headers among the target's
/// sources). It defines every public function of these headers that has no body there, the destructors of
/// the interfaces, and the constants of ElementParam. Private functions are the reference platform's own
/// steps: they are called from nowhere else and may stay undefined.
#if defined(VARUNDO_PLATFORM_EXTERNAL)
    #define VARUNDO_PLATFORM_EXPORT
#elif defined(VARUNDO_BUILDING_PLATFORM)
    #define VARUNDO_PLATFORM_EXPORT Q_DECL_EXPORT
#else
    #define VARUNDO_PLATFORM_EXPORT Q_DECL_IMPORT
#endif

#endif
