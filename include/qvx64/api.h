/* QVX64: control of USB and Wi-Fi digital-microscope cameras.
 *
 * Choose a device with SetVideoDeviceIndex, call Init, then call the other functions. All state
 * belongs to the process: there is one current camera and nothing to close.
 *
 * Device indexes: 0 to 7 are the cameras among the system's video inputs, in the order of
 * GetDeviceId; 90 is the Wi-Fi camera; -1 lets Init choose. Any other value is accepted
 * everywhere and means a camera that does not exist.
 *
 * Threads: call every function from one thread, and let that thread dispatch messages: the
 * library's timers run from its message loop. Calls from several threads at once are not supported.
 *
 * Failures: functions do not report them; each says what it returns instead. No function throws.
 *
 * Times: "worst case" is what a call can take when the camera does not answer, beyond the time that
 * the system's own enumeration of devices needs. A camera access is one register read or write: at
 * most 2 s on a bridge camera. On USB 3 and Wi-Fi the system's own limits apply.
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

/* Finds the current device (see SetVideoDeviceIndex), settles its product id and, for cameras that
 * read their magnification, loads the calibration and starts measuring every 250 ms on the calling
 * thread. May be called again at any time; each call starts afresh and, where it measures, adds
 * another timer.
 * Returns 1 when the library is usable, 0 when no camera was found. With index -1, sets the index
 * to the device it chose.
 * Prints what it learns of USB 3 cameras to standard output. Initialises COM on the calling thread.
 * Blocks for 0.2 to 2 s with a healthy camera; with index 90 and no Wi-Fi camera 2 s more. Worst
 * case: about 40 camera accesses. */
QVX64_API int Init(void);

/* Returns the number of USB 3 cameras that the last Init found through libusbK, 0 without one or
 * without libusbK. Does not block. */
QVX64_API int GetVideoDeviceCount(void);

/* Returns the current device index: as last set, or as chosen by Init. 0 at start. Does not
 * block. */
QVX64_API int GetVideoDeviceIndex(void);

/* Makes `idx` the current device: 0 to 7, 90 or -1. Call it before Init. Nothing is checked or sent
 * to a camera. Does not block. */
QVX64_API void SetVideoDeviceIndex(int idx);

/* Lists the cameras and returns the name of one, as a person knows it.
 * deviceIndex: 0 to 7. 90 gives an empty string without listing; so does, after listing, any index
 * without a camera.
 * Returns a new terminated string at every call. The library never frees it. Null only when memory
 * is exhausted.
 * Names follow the system's order with USB 3 cameras (product ids 0x9B0 to 0x9BF) last. The paths
 * stay in the system's order until the next GetDeviceId. Initialises COM on the calling thread. */
QVX64_API wchar_t* GetVideoDeviceName(int deviceIndex);

/* Lists the cameras and returns the device path of one, in lower case; the four hexadecimal digits
 * after "pid_" are its product id.
 * deviceIndex: 0 to 7. 90 and -1 give an empty string without listing; so does, after listing, any
 * index without a camera. When there is no camera at all, earlier paths stay.
 * Returns a new terminated string at every call. The library never frees it. Null only when memory
 * is exhausted. Initialises COM on the calling thread. */
QVX64_API wchar_t* GetDeviceId(int deviceIndex);

/* The same as narrow text in the OEM code page, pointing into the library: valid until the cameras
 * are listed again. Never null. */
QVX64_API char* GetDeviceIDA(int deviceIndex);

/* Returns the features of a camera as a word of 8 bits, 0 for no camera:
 *   0x80  a model with a focus lens
 *   0x40  reads its magnification
 *   0x20  light ring with dimmable quadrants
 *   0x10  set in the camera's feature register
 *   0x08  lights of variant 3
 *   0x04  lights of variant 2; some models report both
 *   0x02  a model of the 7xxx family or newer
 *   0x01  set in the camera's feature register
 * The feature register counts for product ids 0x910 to 0x91F and from 0x960 on; where it reads 255,
 * and for all others, the word follows from the product id alone.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera that Init found. Lists the cameras (see
 * GetDeviceId) while the index has none. Worst case: 2 camera accesses. */
QVX64_API qvx_long GetConfig(int deviceIndex);

/* Asks to be called back when the touch button on the camera's body is pressed, and starts polling
 * it every 250 ms on the calling thread, which must dispatch messages. Nothing is polled until
 * EnablePressKey(1).
 * func: called on that thread, between other calls; it may call the library. Null for no callback.
 * Every call starts a further timer; none is ever stopped: call it once. Does not block. While
 * polling is on, a tick takes one or two camera accesses. */
QVX64_API void SetEventCallback(void (*func)(void));

/* Calls the callback of SetEventCallback, as if the button had been pressed. Without one, does
 * nothing. */
QVX64_API void FireEvent(void);

/* Switches the polling of the touch button on (bEnableMT exactly 1) or off (anything else). Returns
 * 1 or 0, as it now is. Opening a USB 3 camera, which every Init tries, switches it off again. Does
 * not block. */
QVX64_API int EnablePressKey(int bEnableMT);

/* Returns the magnification at the last measurement, 0 before the first one. A measurement gives at
 * least 1.0, or NaN when the camera's stored calibration is damaged. Every fifth one gives the mean
 * of the last ten samples instead; the very first mean, of five samples only, is half as large.
 * Reads nothing from the camera and does not block.
 * deviceIndex: the device that the next measurements read; -1 means 90. */
QVX64_API double GetMAG(int deviceIndex);

/* Returns the width of the field of view in micrometres at magnification fMag (any number but 0)
 * for the camera at deviceIndex (0 to 7; 90 and -1 for the Wi-Fi camera). For a camera of no known
 * family, 352000 / fMag. Reads nothing from the camera and does not block. */
QVX64_API double FOVx(int deviceIndex, double fMag);

/* Brings the focus lens to the zero position that the camera was given at the factory. Cameras
 * without a focus lens are left alone.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera. Takes 50 ms on a USB 3 camera with a voice
 * coil, else only as long as its accesses. Worst case: 6 camera accesses. */
QVX64_API void SetLensInitPos(int deviceIndex);

/* Moves the focus lens to a position, in units of the lens driver relative to the zero position.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Value: cut to the range of GetLensPosLimits (of product id 0x9BF with a position driver: to -15
 * to 44, although -27 to 71 is reported). On product ids 0x9E0 to 0x9EF the way depends on the last
 * magnification, see GetMAG: measure before moving.
 * A position is sent to whatever camera the index names, also to one without a focus lens, which
 * ignores it. Takes 50 ms on a USB 3 camera with a voice coil, else only as long as its accesses.
 * Worst case: 6 camera accesses. */
QVX64_API void SetLensPos(int deviceIndex, qvx_long Value);

/* Moves the focus lens in the fine steps of a voice coil, relative to its calibrated offset.
 * deviceIndex: 0 to 7. 90 and -1, the Wi-Fi camera, are read but not moved.
 * Value: cut to -1023 to 1023; so is its sum with the offset. A camera whose offset was never
 * calibrated goes to 0 whatever the value. Lenses without a voice coil are sent to position 0,
 * which is not the zero position: call it only where GetLensFinePosLimits gives a range. Takes 50
 * ms on a camera with a voice coil. Worst case: 7 camera accesses. */
QVX64_API void SetLensFinePos(int deviceIndex, qvx_long Value);

/* Gives the range of SetLensPos in *UpperLmt and *LowerLmt; either pointer may be null. A camera
 * without a focus lens gives -15 to 44.
 * Brings the lens to its zero position: ask before moving, not in between.
 * deviceIndex: 0 to 7; 90 and any negative index for the Wi-Fi camera. What kind of lens it has is
 * asked under the index as given: pass 90 for the Wi-Fi camera.
 * Returns 1; 0, with nothing written, only when memory is exhausted. Worst case: 4 camera
 * accesses. */
QVX64_API qvx_long GetLensPosLimits(int deviceIndex, qvx_long* UpperLmt, qvx_long* LowerLmt);

/* The same for SetLensFinePos. -1 in both when the camera has no fine position. Worst case: 6
 * camera accesses. */
QVX64_API qvx_long GetLensFinePosLimits(int deviceIndex, qvx_long* UpperLmt, qvx_long* LowerLmt);

/* Sets the exposure time. Switch automatic exposure off first, or it takes over again.
 * vindex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Value: 0 to 65535 lines of the sensor; on product ids 0x9E0 to 0x9EF a line takes 29.63
 * microseconds, negative values count as 0, and from 1125 on the frame gets longer with the
 * exposure.
 * Product ids 0x89A to 0x89F, 0x91A to 0x91F, 0x9A0 to 0x9AF and 0x9D0 to 0x9DF are left alone, and
 * so are cameras of no known family; then measuring the magnification rests, too, until another
 * exposure function has found its family. Worst case: 5 camera accesses. */
QVX64_API void SetExposureValue(int vindex, qvx_long Value);

/* Returns the exposure time in lines of the sensor, 0 for product ids 0x9B0 to 0x9BF and for
 * cameras of no known family. On product ids 0x9E0 to 0x9EF it may be 1 less than was set. A camera
 * that does not answer reads as 0, one of these ids as 1125.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera. Worst case: 6 camera accesses. */
QVX64_API qvx_long GetExposureValue(int deviceIndex);

/* Sets the brightness that automatic exposure aims at.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * Value: 0 to 255, of which product ids 0x920 to 0x92F and 0x960 to 0x99F use 0 to 223 (the camera
 * also keeps the value plus 32), 0x9B0 to 0x9BF cut what is above 208, and 0x9E0 to 0x9EF what is
 * outside 21 to 240. On product ids 0x920 to 0x92F and 0x960 to 0x99F measuring the magnification
 * rests afterwards: call GetAETarget to let it go on. Worst case: 5 camera accesses. */
QVX64_API void SetAETarget(int deviceIndex, qvx_long Value);

/* Returns the brightness that automatic exposure aims at; 1 for a camera of no known family, 16
 * when there is no camera, 0 (on USB 3: 255) when it does not answer.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera. Worst case: 3 camera accesses. */
QVX64_API qvx_long GetAETarget(int deviceIndex);

/* Switches automatic exposure on (Value 1 or -1) or off (0). Other values change nothing. On
 * product ids 0x9E0 to 0x9EF only 1 switches on, and everything else off.
 * vindex: 0 to 7; 90 and -1 for the Wi-Fi camera. Worst case: 6 camera accesses. */
QVX64_API void SetAutoExposure(int vindex, qvx_long Value);

/* Returns 1 when automatic exposure is on, 0 when it is off and for cameras of no known family. A
 * camera that does not answer reads as 0; of product ids 0x920 to 0x92F and 0x960 to 0x99F as 1.
 * vindex: 0 to 7; 90 and -1 for the Wi-Fi camera. Takes 50 ms on product ids 0x9A0 to 0x9AF and
 * 0x9D0 to 0x9DF. Worst case: 4 camera accesses. */
QVX64_API qvx_long GetAutoExposure(int vindex);

/* Adapts the camera to light that flickers with the mains: Value 0 detects the frequency, 1 is for
 * 60 Hz, 2 for 50 Hz. Detection is left to product ids 0x900 to 0x909, 0x920 to 0x94F, 0x960 to
 * 0x99F and 0x9B0 to 0x9BF; elsewhere 0 changes nothing. Cameras without the setting are left
 * alone.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera. The family is that of the camera used last,
 * so call it after another function with the same index. On product ids 0x9E0 to 0x9EF it sets the
 * power-line property of the current device (see SetVideoDeviceIndex), not over Wi-Fi.
 * Worst case: 4 camera accesses. */
QVX64_API void SetFlicker(int deviceIndex, qvx_long Value);

/* Sets a picture property of the current camera (SetVideoDeviceIndex) and switches its automatic
 * mode off. A value that the camera cannot take is ignored, by the camera. valueIndex: 0
 * brightness, 1 contrast, 2 hue, 3 saturation, 4 sharpness, 5 gamma; on USB cameras also 6 colour
 * enable, 7 white balance, 8 backlight compensation, 9 gain, 13 power-line frequency. What the
 * camera does not have is ignored. newValue: in the camera's own range, see
 * GetVideoProcAmpValueRange. A USB camera is found by its device path: call GetDeviceId before.
 * Each of the three functions, when it finds the camera, opens its capture filter and leaves that
 * open, with COM, until the process ends. Prints a line to standard output when the system has no
 * video input or the camera no picture properties. Worst case: one time-out of the system's HTTP
 * client on Wi-Fi. */
QVX64_API void SetVideoProcAmp(int valueIndex, qvx_long newValue);

/* Returns what a picture property stands at. -1 for a property that the camera does not have and
 * for a USB camera that is not there; 0 when the Wi-Fi camera does not answer as it should or the
 * system has no video input at all. valueIndex and worst case: as for SetVideoProcAmp. */
QVX64_API qvx_long GetVideoProcAmp(int valueIndex);

/* Gives the limits, the step and the standard value of a picture property: all -1 for one that the
 * camera does not have. When the camera is not there or does not answer, nothing is written: preset
 * the variables.
 * valueIndex: points to the property's number, as for SetVideoProcAmp; it is not changed. Any other
 * pointer may be null. Returns 0 always. Worst case: as for SetVideoProcAmp. */
QVX64_API qvx_long GetVideoProcAmpValueRange(qvx_long* valueIndex, qvx_long* lMin, qvx_long* lMax,
                                             qvx_long* lSteppomgDelta, qvx_long* lDefault);

/* Switches the camera's illumination to one of its basic states.
 * deviceIndex: 0 to 7; 90 and -1 for the Wi-Fi camera. Pass 90: under -1 the kind of its ring is
 * not found out, and a ring with quadrants is lit as a plain one. nLedStatus: 0 for off, 1 for on,
 * 2 for the other lighting that the model has: its second ring, its segments or its axial light.
 * Where there is none, 2 changes nothing or, on Wi-Fi cameras, switches off. Other values change
 * nothing on USB cameras; on Wi-Fi cameras they do what suits the model. Lists the cameras when the
 * index has none yet. Takes up to 0.9 s. Worst case: 21 camera accesses. */
QVX64_API void SetLEDState(int deviceIndex, int nLedStatus);

/* Writes the switch register of the lighting controller: which segments of the ring are lit, and
 * whether the other lights are on.
 * ID: 0 to 7; 90 and -1 for the Wi-Fi camera.
 * nMode: 0 to 15 light the segments whose bits are set, 16 switches the ring off. 24 and 32 switch
 * the axial light on and off, 40 and 48 the aiming light, where there is one. Of any other value a
 * USB camera gets the low byte; pass none to a Wi-Fi camera, where it could address another
 * register. The first of the four functions SetSEGSwitch, SetSEGLevel, SetAXILevel and
 * SetAimpointLevel that needs it puts the lights of the device into segment mode, by the model of
 * the current device (see SetVideoDeviceIndex). Takes 50 ms. Worst case: 5 camera accesses. */
QVX64_API void SetSEGSwitch(int ID, qvx_long nMode);

/* Sets the level of the whole ring.
 * ID: as SetSEGSwitch.
 * nLevel: 0 to 6; to 31 on rings whose quadrants can be dimmed. 0 also switches the ring off.
 * Values beyond reach other lights, which share the register; see SetSEGSwitch for those beyond a
 * byte. Takes 100 ms. Worst case: 8 camera accesses. */
QVX64_API void SetSEGLevel(int ID, qvx_long nLevel);

/* Sets the level of one quadrant of the ring. Does nothing on cameras whose ring has no quadrants
 * to dim (see bit 0x20 of GetConfig). DeviceIndex: 0 to 7, or 90 for the Wi-Fi camera; -1 does
 * nothing. Quadrant: 1 to 4, or 0 for the whole ring. Others do nothing. Value: 0 to 31; of others,
 * see SetSEGSwitch. Takes 50 or 100 ms. Worst case: 8 camera accesses. */
QVX64_API void SetESEG(int DeviceIndex, qvx_long Quadrant, qvx_long Value);

/* Sets the level of the axial light. The way depends on the model of the current device (see
 * SetVideoDeviceIndex), also when another one is addressed.
 * ID: as SetSEGSwitch.
 * nLevel: 0 to 6; 0 switches it off. Of others, see SetSEGLevel. Takes 100 or 150 ms. Worst case: 8
 * camera accesses. */
QVX64_API void SetAXILevel(int ID, qvx_long nLevel);

/* Sets the level of the aiming light of product ids 0x9B0 to 0x9BF, 0x9C0 to 0x9C7 and 0x9E0 to
 * 0x9EF; on 0x960 to 0x99F the axial light's. Other models are left alone. The model is that of the
 * current device (see SetVideoDeviceIndex), also when another one is addressed.
 * ID, nLevel: as SetAXILevel. Takes 100 ms, on 0x960 to 0x99F 50 ms. Worst case: 6 camera
 * accesses. */
QVX64_API void SetAimpointLevel(int ID, qvx_long nLevel);

/* Saves a still of the Wi-Fi camera, whichever device is current, as a JPEG file; a file that
 * exists is replaced. filename: at most 256 characters; characters above 127 are taken as ISO
 * 8859-1, whatever the system's code page. A relative name starts from the process's current
 * folder. Returns false only when the file cannot be created. True does not mean that there is a
 * file: a camera out of reach gives true and none, a camera that stops half-way or a full disk
 * gives true and a part. Worst case: one time-out of the system's HTTP client for the answer, and
 * one for each part of it that is late. */
QVX64_API bool GetWiFiImage(const char* filename);

/* Chooses the size of the Wi-Fi camera's video and stills, in pixels; one of GetWiFiVideoCaps.
 * Returns whether a command was sent: false, and nothing sent, when the current device is not 90 or
 * its camera does not offer the size. Worst case: 2 camera accesses. */
QVX64_API bool SetWiFiVideoRes(qvx_long width, qvx_long height);

/* Lists the sizes of video and stills that the Wi-Fi camera offers, by the product id that Init
 * found: how many in *count, and that many widths and heights. width and height must have room for
 * 5 each; any pointer may be null. Returns false, with nothing written, for a camera that is not
 * known to offer any. Worst case: 1 camera access. */
QVX64_API bool GetWiFiVideoCaps(qvx_long* count, short* width, short* height);

#ifdef __cplusplus
}
#endif

#endif
