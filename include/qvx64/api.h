/* QVX64: control of USB and Wi-Fi digital-microscope cameras.
 *
 * Choose a device with SetVideoDeviceIndex, call Init, then call the other functions. All state
 * belongs to the process: there is one current camera and nothing to close.
 *
 * Device indexes: 0 to 7 are the cameras among the system's video inputs, in the order of
 * GetDeviceId; QVX_WIFI_CAMERA is the Wi-Fi camera. -1 lets Init choose, and to the other functions
 * it is the Wi-Fi camera. Every index is accepted everywhere. One without a camera mostly reads as
 * nothing, but light commands to it, and GetAETarget, go by the product id that Init or
 * GetDeviceIDA noted last; 8 to 23 are further HID bridges, without a path and a product id of
 * their own.
 *
 * Product ids tell the models apart; they are the four hexadecimal digits after "pid_" in a device
 * path.
 *
 * What holds where a function does not say otherwise:
 *
 * Thread: the camera thread is the one thread of the application that calls this library; calls
 * from several threads at once are not supported. The library's timers run from its message loop.
 *
 * Failure: nothing says so. What a model does not have is left alone, what a camera does not take
 * is lost. No function throws.
 *
 * Worst case: the longest that a call takes when the camera does not answer: the pauses that it
 * makes, in milliseconds, and its accesses to the camera. An access reads or writes one register or
 * sends one command. On a bridge camera it ends after 2000 ms at the latest; on Wi-Fi it is one
 * HTTP request, with the time-outs of the system's HTTP client and a pause of up to 10 ms; on USB 3
 * one or two requests, as long as the driver lets them take. "listing" is the time in which the
 * system lists or opens its video inputs.
 */
#ifndef QVX64_API_H
#define QVX64_API_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* 32 bits wide on every platform, as `long` is on Windows. */
#if defined(_WIN32)
typedef long qvx_long;
#else
typedef int32_t qvx_long;
#endif

#if defined(_WIN32) && !defined(QVX64_BUILDING)
#define QVX64_API __declspec(dllimport)
#else
#define QVX64_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ==== Choosing a camera ==== */

/* Device indexes; 0 to 7 are the cameras among the video inputs. */
enum {
  QVX_CHOOSE = -1, /* Init chooses the first USB camera */
  QVX_WIFI_CAMERA = 90
};

/* Bits of the feature word, see GetConfig. */
enum {
  QVX_FEATURE_LIGHTING_BOARD = 0x01, /* set in the camera's feature register */
  QVX_FEATURE_7XXX = 0x02,           /* a model of the 7xxx family or newer */
  QVX_FEATURE_LIGHTS_2 = 0x04,       /* lights of variant 2; counts where both are set */
  QVX_FEATURE_LIGHTS_3 = 0x08,       /* lights of variant 3 */
  QVX_FEATURE_AIMING_LIGHT = 0x10,   /* set in the camera's feature register */
  QVX_FEATURE_QUADRANTS = 0x20,      /* light ring with dimmable quadrants */
  QVX_FEATURE_MAGNIFICATION = 0x40,  /* reads its magnification */
  QVX_FEATURE_LENS = 0x80            /* a model with a focus lens */
};

/* Finds the current device (see SetVideoDeviceIndex), settles its product id and, for cameras that
 * read their magnification, loads the calibration and starts measuring every 250 ms. May be called
 * again at any time; each call starts afresh and, where it measures, adds another timer. When it
 * finds a camera with index -1 it sets the index to 0, the device it chose. Prints what it learns
 * of USB 3 cameras to standard output. Of every bridge camera one answer is awaited as long as its
 * driver takes. With a healthy camera it takes 0.2 to 2 s; with index 90 and no Wi-Fi camera 2 s
 * more.
 * Result: 1 when the library is usable, 0 when no camera was found.
 * Failure: 0. A camera that is there and does not answer gives 1.
 * Thread: measuring runs from its message loop, two accesses each time. COM is initialised on it.
 * Worst case: listing + 2900 ms + 40 accesses. */
QVX64_API int Init(void);

/* Counts the devices on libusbK's driver, as the last Init found them: USB 3 cameras and whatever
 * else uses that driver.
 * Result: the number of devices.
 * Failure: 0 before Init, without libusbK, without such a device, and when the one that Init looked
 * for is not among them.
 * Worst case: does not block. */
QVX64_API int GetVideoDeviceCount(void);

/* Tells the current device index: as last set, or as chosen by Init.
 * Result: the index, 0 at start.
 * Failure: cannot fail.
 * Worst case: does not block. */
QVX64_API int GetVideoDeviceIndex(void);

/* Makes a device the current one. Call it before Init. Nothing is sent to a camera.
 * idx: 0 to 7, QVX_WIFI_CAMERA or QVX_CHOOSE; any value is taken.
 * Worst case: does not block. */
QVX64_API void SetVideoDeviceIndex(int idx);

/* Lists the cameras and tells the name of one, as a person knows it. Names follow the system's
 * order with USB 3 cameras (product ids 0x9B0 to 0x9BF) last; the device paths stay in the system's
 * order until the next GetDeviceId.
 * deviceIndex: 0 to 7. 90 gives an empty string without listing.
 * Result: a new terminated string at every call, which the library never frees.
 * Failure: an empty string for an index without a camera, or the name that an earlier listing found
 * there. Null only when memory is exhausted.
 * Thread: COM is initialised on it.
 * Worst case: listing. */
QVX64_API wchar_t* GetVideoDeviceName(int deviceIndex);

/* Lists the cameras and tells the device path of one, in lower case. Characters beyond ASCII may
 * come out as others.
 * deviceIndex: 0 to 7. 90 and -1 give an empty string without listing.
 * Result: a new terminated string at every call, which the library never frees.
 * Failure: an empty string for an index without a camera, or the path that an earlier listing found
 * there. Null only when memory is exhausted.
 * Thread: COM is initialised on it.
 * Worst case: listing. */
QVX64_API wchar_t* GetDeviceId(int deviceIndex);

/* The same as GetDeviceId, as narrow text. From then on the product id of the camera listed last
 * stands for the Wi-Fi camera's, too, until the next Init: use GetDeviceId beside a Wi-Fi camera.
 * deviceIndex: 0 to 7. 90 and -1 give an empty string without listing.
 * Result: text in the OEM code page that belongs to the library; valid until the cameras are listed
 * again, which Init and several others do. Never null.
 * Failure: as for GetDeviceId.
 * Thread: COM is initialised on it.
 * Worst case: listing. */
QVX64_API char* GetDeviceIDA(int deviceIndex);

/* Tells the features of a camera as a word of 8 bits (see the constants). The feature register
 * counts for product ids 0x910 to 0x91F, 0x960 to 0x99F, 0x9B0 and 0x9C0 to 0x9EF; where it reads
 * 255, and for all others, the word follows from the product id alone. Lists the cameras (see
 * GetDeviceId) while the index has none.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera that Init found.
 * Result: the word.
 * Failure: 0 for no camera. A bridge or Wi-Fi camera that does not answer counts as one whose
 * register reads 0, and of models with variants as variant 3.
 * Worst case: listing + 2 accesses. */
QVX64_API qvx_long GetConfig(int deviceIndex);

/* ==== Touch button ==== */

/* Asks to be called back when the touch button on the camera's body is pressed, and starts polling
 * it every 250 ms. Nothing is polled until EnablePressKey(1); from then on each time takes up to 4
 * accesses. Polled or not, each time makes the product id of the current device the current one.
 * Every call starts a further timer; none is ever stopped.
 * func: called between other calls; it may call the library and must not throw. Null for no
 * callback.
 * Thread: polling runs, and func is called, from its message loop.
 * Worst case: does not block. */
QVX64_API void SetEventCallback(void (*func)(void));

/* Calls the callback of SetEventCallback, as if the button had been pressed.
 * Failure: without a callback nothing happens.
 * Worst case: does not block, beyond what the callback does. */
QVX64_API void FireEvent(void);

/* Switches the polling of the touch button on or off. Init switches it off again whenever it looks
 * for USB 3 cameras: call it after Init.
 * bEnableMT: 1 for on, anything else for off.
 * Result: 1 or 0, as it now is.
 * Failure: cannot fail.
 * Worst case: does not block. */
QVX64_API int EnablePressKey(int bEnableMT);

/* ==== Magnification ==== */

/* Tells the magnification at the last measurement; nothing is read from the camera. Every fifth
 * measurement gives the mean of the last ten samples instead of the sample; the very first mean, of
 * five samples only, is half as large.
 * deviceIndex: the device that the next measurements read: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Result: the magnification, at least 1.0 except for that first mean.
 * Failure: 0 until an Init has measured, which it does once; NaN when the camera's stored
 * calibration is damaged. Of a camera that has stopped answering, what its calibration makes of a
 * reading of 0, on USB 3 of 255.
 * Thread: it must dispatch messages, or nothing more is measured.
 * Worst case: does not block. */
QVX64_API double GetMAG(int deviceIndex);

/* Tells how wide the field of view is at a magnification; nothing is read from the camera.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * fMag: the magnification, any number but 0.
 * Result: the width in micrometres.
 * Failure: 352000 / fMag for no camera and for models whose pixel size is not known here; product
 * ids 0x930 to 0x949, 0x9C0 to 0x9CF and 0x9E7 to 0x9EF are among them.
 * Worst case: does not block. */
QVX64_API double FOVx(int deviceIndex, double fMag);

/* ==== Focus lens ==== */

/* Brings the focus lens to the zero position that the camera was given at the factory. Models
 * without a focus lens are left alone.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Failure: when the zero position cannot be read, the lens is sent to 0 (of product id 0x9B0 to
 * 255).
 * Worst case: 50 ms + 6 accesses. */
QVX64_API void SetLensInitPos(int deviceIndex);

/* Moves the focus lens. On product ids 0x9E0 to 0x9EF the way depends on the last magnification,
 * see GetMAG: measure before moving. A position is sent to whatever camera the index names, also to
 * one without a focus lens, which ignores it.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Value: the position in units of the lens driver, relative to the zero position. Cut to the range
 * of GetLensPosLimits (of product id 0x9BF with a position driver to -15 to 44, although -27 to 71
 * is reported).
 * Failure: when the zero position cannot be read, the position counts from 0, on product id 0x9B0
 * from 255.
 * Worst case: 50 ms + 6 accesses. */
QVX64_API void SetLensPos(int deviceIndex, qvx_long Value);

/* Moves the focus lens in the fine steps of a voice coil. A camera whose offset was never
 * calibrated goes to 0 whatever the value. Lenses without a voice coil are sent to position 0,
 * which is not the zero position: call it only where GetLensFinePosLimits gives a range.
 * deviceIndex: 0 to 7. 90 and -1, the Wi-Fi camera, are read but not moved.
 * Value: the position in steps of the coil, relative to its calibrated offset: -1023 to 1023; what
 * is beyond is cut, and so is the sum with the offset.
 * Worst case: 50 ms + 7 accesses. */
QVX64_API void SetLensFinePos(int deviceIndex, qvx_long Value);

/* Gives the range of SetLensPos. Brings the lens to its zero position: ask before moving, not in
 * between. Over USB a voice coil of product ids 0x990 to 0x99F, 0x9C0 to 0x9CF and 0x9E0 to 0x9EF
 * stays where it is, and so does every lens of a USB 3 camera.
 * deviceIndex: 0 to 7; 90 and any negative index for the Wi-Fi camera. What kind of lens it has is
 * asked under the index as given: pass 90.
 * UpperLmt: receives the upper limit; may be null.
 * LowerLmt: receives the lower limit; may be null.
 * Result: 1.
 * Failure: -15 and 44 for a camera without a focus lens, and mostly for one that does not answer.
 * 0, with nothing written, only when memory is exhausted.
 * Worst case: 4 accesses. */
QVX64_API qvx_long GetLensPosLimits(int deviceIndex, qvx_long* UpperLmt, qvx_long* LowerLmt);

/* The same as GetLensPosLimits for SetLensFinePos.
 * deviceIndex: as for GetLensPosLimits.
 * UpperLmt: receives the upper limit; may be null.
 * LowerLmt: receives the lower limit; may be null.
 * Result: 1.
 * Failure: -1 in both when the camera has no fine position or does not answer. 0, with nothing
 * written, only when memory is exhausted.
 * Worst case: 6 accesses. */
QVX64_API qvx_long GetLensFinePosLimits(int deviceIndex, qvx_long* UpperLmt, qvx_long* LowerLmt);

/* ==== Exposure ==== */

/* Exposure times, in lines of the sensor. */
enum { QVX_EXPOSURE_MIN = 0, QVX_EXPOSURE_MAX = 65535 };

/* Modes of SetFlicker: how the light flickers. */
enum { QVX_FLICKER_DETECT = 0, QVX_FLICKER_60_HZ = 1, QVX_FLICKER_50_HZ = 2 };

/* Sets the exposure time. Switch automatic exposure off first, or it takes over again. Product ids
 * 0x89A to 0x89F, 0x91A to 0x91F, 0x9A0 to 0x9AF and 0x9D0 to 0x9DF are left alone, and so are
 * cameras of no known family; then measuring the magnification rests, too: call GetAETarget to let
 * it go on, or Init where the family is not known.
 * vindex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Value: QVX_EXPOSURE_MIN to QVX_EXPOSURE_MAX lines of the sensor. On product ids 0x9E0 to 0x9EF a
 * line takes 29.63 microseconds, negative values count as 0, and from 1125 on the frame gets longer
 * with the exposure.
 * Worst case: 5 accesses. */
QVX64_API void SetExposureValue(int vindex, qvx_long Value);

/* Tells the exposure time. On product ids 0x9E0 to 0x9EF it may be 1 more or 1 less than was set.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Result: the time in lines of the sensor.
 * Failure: 0 for product ids 0x9B0 to 0x9BF, for cameras of no known family and for one that does
 * not answer; 1125 for one of product ids 0x9E0 to 0x9EF that does not answer.
 * Worst case: 6 accesses. */
QVX64_API qvx_long GetExposureValue(int deviceIndex);

/* Sets the brightness that automatic exposure aims at. On product ids 0x920 to 0x92F and 0x960 to
 * 0x99F measuring the magnification rests afterwards: call GetAETarget to let it go on.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Value: 0 to 255. Product ids 0x920 to 0x92F and 0x960 to 0x99F use 0 to 223 (the camera also
 * keeps the value plus 32), 0x9B0 to 0x9BF cut what is above 208, and 0x9E0 to 0x9EF what is
 * outside 21 to 240.
 * Worst case: 8 accesses. */
QVX64_API void SetAETarget(int deviceIndex, qvx_long Value);

/* Tells the brightness that automatic exposure aims at.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Result: the brightness, 0 to 255.
 * Failure: 1 for a camera of no known family, 16 while no product id is known at all, 0 (on USB 3
 * 255) when it does not answer. A device without a product id goes by the one noted last.
 * Worst case: 3 accesses. */
QVX64_API qvx_long GetAETarget(int deviceIndex);

/* Switches automatic exposure on or off.
 * vindex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Value: 1 or -1 for on, 0 for off; others change nothing. On product ids 0x9E0 to 0x9EF only 1
 * switches on, and everything else off.
 * Worst case: 6 accesses. */
QVX64_API void SetAutoExposure(int vindex, qvx_long Value);

/* Tells whether automatic exposure is on.
 * vindex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Result: 1 for on, 0 for off.
 * Failure: 0 for cameras of no known family and for one that does not answer; 1 for one of product
 * ids 0x920 to 0x92F and 0x960 to 0x99F that does not answer.
 * Worst case: 50 ms + 4 accesses. */
QVX64_API qvx_long GetAutoExposure(int vindex);

/* Adapts the camera to light that flickers with the mains. The family is that of the camera used
 * last: call it after another function with the same index. On product ids 0x9E0 to 0x9EF it sets
 * the power-line property of the current device (see SetVideoProcAmp), not over Wi-Fi.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Value: QVX_FLICKER_DETECT (0), QVX_FLICKER_60_HZ (1) or QVX_FLICKER_50_HZ (2). Product ids 0x900
 * to 0x909, 0x920 to 0x94F, 0x960 to 0x99F and 0x9B0 to 0x9BF can detect; elsewhere 0 changes
 * nothing.
 * Worst case: listing + 4 accesses. */
QVX64_API void SetFlicker(int deviceIndex, qvx_long Value);

/* ==== Picture ==== */

/* Picture properties; a Wi-Fi camera has the first six. */
enum {
  QVX_BRIGHTNESS = 0,
  QVX_CONTRAST = 1,
  QVX_HUE = 2,
  QVX_SATURATION = 3,
  QVX_SHARPNESS = 4,
  QVX_GAMMA = 5,
  QVX_COLOR_ENABLE = 6,
  QVX_WHITE_BALANCE = 7,
  QVX_BACKLIGHT_COMPENSATION = 8,
  QVX_GAIN = 9,
  QVX_POWER_LINE_FREQUENCY = 13
};

/* Sets a picture property of the current device (see SetVideoDeviceIndex; every negative index is
 * the Wi-Fi camera here) and switches its automatic mode off. A USB camera is found by its device
 * path: call GetDeviceId before. Each of these three functions, when it finds the camera, opens its
 * capture filter and leaves that open, with COM, until the process ends, and prints a line to
 * standard output when the system has no video input or the camera no picture properties.
 * valueIndex: QVX_BRIGHTNESS to QVX_GAMMA; on USB cameras also the properties behind these.
 * newValue: in the camera's own range, see GetVideoProcAmpValueRange.
 * Thread: COM is initialised on it.
 * Worst case: listing + 1 access. */
QVX64_API void SetVideoProcAmp(int valueIndex, qvx_long newValue);

/* Tells what a picture property of the current device stands at.
 * valueIndex: as for SetVideoProcAmp.
 * Result: the value, in the camera's own range.
 * Failure: -1 for a property that the camera does not have and for a USB camera that is not there;
 * 0 when the Wi-Fi camera does not answer as it should or the system has no video input at all.
 * Thread: COM is initialised on it.
 * Worst case: listing + 1 access, and a further time-out for each part of the answer that is
 * late. */
QVX64_API qvx_long GetVideoProcAmp(int valueIndex);

/* Gives the limits, the step and the default value of a picture property of the current device.
 * valueIndex: points to the property's number, as for SetVideoProcAmp; it is not changed. Null does
 * nothing.
 * lMin: receives the smallest value; this one and the next three may be null.
 * lMax: receives the largest value.
 * lSteppomgDelta: receives the step between values.
 * lDefault: receives the default value.
 * Result: 0 always.
 * Failure: all four are -1 for a property that the camera does not have. When the camera is not
 * there or does not answer, nothing is written: preset the variables.
 * Thread: COM is initialised on it.
 * Worst case: listing + 1 access, and a further time-out for each part of the answer that is
 * late. */
QVX64_API qvx_long GetVideoProcAmpValueRange(qvx_long* valueIndex, qvx_long* lMin, qvx_long* lMax,
                                             qvx_long* lSteppomgDelta, qvx_long* lDefault);

/* ==== Light ==== */

/* Basic states, for SetLEDState. */
enum {
  QVX_LED_OFF = 0,
  QVX_LED_ON = 1,
  QVX_LED_OTHER = 2 /* the other lighting that the model has */
};

/* Values of SetSEGSwitch: segments, which may be added up, or one of the others. */
enum {
  QVX_SEGMENT_1 = 1,
  QVX_SEGMENT_2 = 2,
  QVX_SEGMENT_3 = 4,
  QVX_SEGMENT_4 = 8,
  QVX_RING_ON = 15, /* all segments */
  QVX_RING_OFF = 16,
  QVX_AXIAL_ON = 24,
  QVX_AXIAL_OFF = 32,
  QVX_AIM_ON = 40,
  QVX_AIM_OFF = 48
};

/* Light levels: 0 to 6, or to 31 where quadrants can be dimmed. */
enum { QVX_LEVEL_OFF = 0, QVX_LEVEL_FULL = 6, QVX_QUADRANT_LEVEL_FULL = 31 };

/* Switches the camera's illumination to one of its basic states. Lists the cameras while the index
 * has none.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera. Pass 90: under -1 the kind of its ring is
 * not found out, and a ring with quadrants is lit as a plain one.
 * nLedStatus: QVX_LED_OFF (0), QVX_LED_ON (1), or QVX_LED_OTHER (2) for the other lighting that the
 * model has: its second ring, its segments or its axial light. Where there is none, 2 changes
 * nothing or, on Wi-Fi cameras, switches off. Other values change nothing on USB cameras; on Wi-Fi
 * cameras they do what suits the model.
 * Worst case: listing + 900 ms + 20 accesses. */
QVX64_API void SetLEDState(int deviceIndex, int nLedStatus);

/* Writes the switch register of the lighting controller: which segments of the ring are lit, and
 * whether the other lights are on. The first lighting command to a device puts its lights into
 * segment mode, by the model of the current device (see SetVideoDeviceIndex), when it is one of
 * this function, of SetSEGLevel or, on product ids 0x960 to 0x99F, of SetAXILevel or
 * SetAimpointLevel. On other models a first SetAXILevel or SetAimpointLevel uses the chance up:
 * call this one first.
 * ID: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * nMode: 0 to 15 light the segments whose bits are set; QVX_RING_OFF, or one of the switches of the
 * axial and the aiming light, where there is one. Of any other value a USB camera gets the low
 * byte; pass none to a Wi-Fi camera, where it could address another register.
 * Worst case: 50 ms + 5 accesses. */
QVX64_API void SetSEGSwitch(int ID, qvx_long nMode);

/* Sets the level of the whole ring.
 * ID: as for SetSEGSwitch.
 * nLevel: 0 to 6; to 31 on rings whose quadrants can be dimmed. 0 also switches the ring off, and a
 * level after it leaves it off: call SetSEGSwitch, too. Values beyond reach other lights, which
 * share the register; on all but product ids 0x9C0 to 0x9C7 and 0x9E0 to 0x9EF 7 to 13 are the
 * axial light's, also where quadrants can be dimmed. Of those beyond a byte, see SetSEGSwitch.
 * Worst case: 100 ms + 8 accesses. */
QVX64_API void SetSEGLevel(int ID, qvx_long nLevel);

/* Sets the level of one quadrant of the ring. Does nothing on cameras whose ring has no quadrants
 * to dim (see QVX_FEATURE_QUADRANTS).
 * DeviceIndex: 0 to 7, or 90 for the Wi-Fi camera. Do not pass -1: it does nothing, but after a
 * call for a camera of product id 0x9B0 that one is asked and the Wi-Fi camera set.
 * Quadrant: 1 to 4, or 0 for the whole ring. Others do nothing.
 * Value: 0 to 31; of others, see SetSEGSwitch.
 * Failure: a camera that does not answer counts as one without quadrants.
 * Worst case: 100 ms + 8 accesses. */
QVX64_API void SetESEG(int DeviceIndex, qvx_long Quadrant, qvx_long Value);

/* Sets the level of the axial light. The way depends on the model of the current device (see
 * SetVideoDeviceIndex), also when another one is addressed.
 * ID: as for SetSEGSwitch.
 * nLevel: 0 to 6; 0 switches it off. Of others, see SetSEGLevel.
 * Worst case: 150 ms + 8 accesses. */
QVX64_API void SetAXILevel(int ID, qvx_long nLevel);

/* Sets the level of the aiming light of product ids 0x9B0 to 0x9BF, 0x9C0 to 0x9C7 and 0x9E0 to
 * 0x9EF; on 0x960 to 0x99F the axial light's. The model is that of the current device (see
 * SetVideoDeviceIndex), also when another one is addressed.
 * ID: as for SetSEGSwitch.
 * nLevel: 0 to 6; 0 switches it off. Of others, see SetSEGLevel.
 * Worst case: 100 ms + 6 accesses. */
QVX64_API void SetAimpointLevel(int ID, qvx_long nLevel);

/* ==== Wi-Fi camera ==== */

/* Saves a still of the Wi-Fi camera, whichever device is current, as a JPEG file. A file that
 * exists is replaced.
 * filename: at most 256 characters; characters above 127 are taken as ISO 8859-1, whatever the
 * system's code page. A relative name starts from the process's current folder.
 * Result: true, which does not mean that there is a file.
 * Failure: false when the file cannot be created. A camera out of reach gives true and no file, a
 * camera that stops half-way or a full disk gives true and a part.
 * Worst case: 1 access, and a further time-out for each part of the answer that is late. */
QVX64_API bool GetWiFiImage(const char* filename);

/* Chooses the size of the Wi-Fi camera's video and stills; one of GetWiFiVideoCaps.
 * width: in pixels.
 * height: in pixels.
 * Result: true when a command was sent, whatever the camera says to it.
 * Failure: false, and nothing sent, when the current device is not 90 or its camera does not offer
 * the size.
 * Worst case: 2 accesses. */
QVX64_API bool SetWiFiVideoRes(qvx_long width, qvx_long height);

/* Lists the sizes of video and stills that the Wi-Fi camera offers, by the product id of the camera
 * used last: call it after Init with 90.
 * count: receives how many; this one and the next two may be null.
 * width: receives that many widths in pixels; must have room for 5.
 * height: receives that many heights in pixels; must have room for 5.
 * Result: true.
 * Failure: false, with nothing written, for a camera that is not known to offer any.
 * Worst case: 1 access. */
QVX64_API bool GetWiFiVideoCaps(qvx_long* count, short* width, short* height);

#ifdef __cplusplus
}
#endif

#endif
