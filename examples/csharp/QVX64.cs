// The 37 functions of QVX64.dll. Microscope.cs shows how they are called.
// `long` has 32 bits in the library: it is int here. `bool` has one byte.
// Texts that come back belong to the library: Marshal.PtrToStringUni reads the wide ones,
// Marshal.PtrToStringAnsi the other one.
using System;
using System.Runtime.InteropServices;

static class QVX64
{
    const string Dll = "QVX64.dll";

    public const int QVX_CHOOSE = -1, QVX_WIFI_CAMERA = 90;
    public const int QVX_FEATURE_LIGHTING_BOARD = 0x01, QVX_FEATURE_7XXX = 0x02,
        QVX_FEATURE_LIGHTS_2 = 0x04, QVX_FEATURE_LIGHTS_3 = 0x08,
        QVX_FEATURE_AIMING_LIGHT = 0x10, QVX_FEATURE_QUADRANTS = 0x20,
        QVX_FEATURE_MAGNIFICATION = 0x40, QVX_FEATURE_LENS = 0x80;
    public const int QVX_EXPOSURE_MIN = 0, QVX_EXPOSURE_MAX = 65535;
    public const int QVX_FLICKER_DETECT = 0, QVX_FLICKER_60_HZ = 1, QVX_FLICKER_50_HZ = 2;
    public const int QVX_BRIGHTNESS = 0, QVX_CONTRAST = 1, QVX_HUE = 2, QVX_SATURATION = 3,
        QVX_SHARPNESS = 4, QVX_GAMMA = 5, QVX_COLOR_ENABLE = 6, QVX_WHITE_BALANCE = 7,
        QVX_BACKLIGHT_COMPENSATION = 8, QVX_GAIN = 9, QVX_POWER_LINE_FREQUENCY = 13;
    public const int QVX_LED_OFF = 0, QVX_LED_ON = 1, QVX_LED_OTHER = 2;
    public const int QVX_SEGMENT_1 = 1, QVX_SEGMENT_2 = 2, QVX_SEGMENT_3 = 4, QVX_SEGMENT_4 = 8,
        QVX_RING_ON = 15, QVX_RING_OFF = 16, QVX_AXIAL_ON = 24, QVX_AXIAL_OFF = 32,
        QVX_AIM_ON = 40, QVX_AIM_OFF = 48;
    public const int QVX_LEVEL_OFF = 0, QVX_LEVEL_FULL = 6, QVX_QUADRANT_LEVEL_FULL = 31;

    // Keep the delegate that the library was given in a field, or the garbage collector takes it.
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void ButtonHandler();

    [DllImport(Dll)] public static extern int Init();
    [DllImport(Dll)] public static extern int GetVideoDeviceCount();
    [DllImport(Dll)] public static extern int GetVideoDeviceIndex();
    [DllImport(Dll)] public static extern void SetVideoDeviceIndex(int idx);
    [DllImport(Dll)] public static extern IntPtr GetVideoDeviceName(int deviceIndex);
    [DllImport(Dll)] public static extern IntPtr GetDeviceId(int deviceIndex);
    [DllImport(Dll)] public static extern IntPtr GetDeviceIDA(int deviceIndex);
    [DllImport(Dll)] public static extern int GetConfig(int deviceIndex);
    [DllImport(Dll)] public static extern void SetEventCallback(ButtonHandler handler);
    [DllImport(Dll)] public static extern void FireEvent();
    [DllImport(Dll)] public static extern int EnablePressKey(int bEnableMT);
    [DllImport(Dll)] public static extern double GetMAG(int deviceIndex);
    [DllImport(Dll)] public static extern double FOVx(int deviceIndex, double fMag);
    [DllImport(Dll)] public static extern void SetLensInitPos(int deviceIndex);
    [DllImport(Dll)] public static extern void SetLensPos(int deviceIndex, int value);
    [DllImport(Dll)] public static extern void SetLensFinePos(int deviceIndex, int value);
    [DllImport(Dll)] public static extern int GetLensPosLimits(int deviceIndex, out int upperLmt, out int lowerLmt);
    [DllImport(Dll)] public static extern int GetLensFinePosLimits(int deviceIndex, out int upperLmt, out int lowerLmt);
    [DllImport(Dll)] public static extern void SetExposureValue(int vindex, int value);
    [DllImport(Dll)] public static extern int GetExposureValue(int deviceIndex);
    [DllImport(Dll)] public static extern void SetAETarget(int deviceIndex, int value);
    [DllImport(Dll)] public static extern int GetAETarget(int deviceIndex);
    [DllImport(Dll)] public static extern void SetAutoExposure(int vindex, int value);
    [DllImport(Dll)] public static extern int GetAutoExposure(int vindex);
    [DllImport(Dll)] public static extern void SetFlicker(int deviceIndex, int value);
    [DllImport(Dll)] public static extern void SetVideoProcAmp(int valueIndex, int newValue);
    [DllImport(Dll)] public static extern int GetVideoProcAmp(int valueIndex);
    [DllImport(Dll)] public static extern int GetVideoProcAmpValueRange(
        ref int valueIndex, ref int lMin, ref int lMax, ref int lSteppomgDelta, ref int lDefault);
    [DllImport(Dll)] public static extern void SetLEDState(int deviceIndex, int nLedStatus);
    [DllImport(Dll)] public static extern void SetSEGSwitch(int id, int nMode);
    [DllImport(Dll)] public static extern void SetSEGLevel(int id, int nLevel);
    [DllImport(Dll)] public static extern void SetESEG(int deviceIndex, int quadrant, int value);
    [DllImport(Dll)] public static extern void SetAXILevel(int id, int nLevel);
    [DllImport(Dll)] public static extern void SetAimpointLevel(int id, int nLevel);
    [DllImport(Dll)] [return: MarshalAs(UnmanagedType.I1)] public static extern bool GetWiFiImage(string filename);
    [DllImport(Dll)] [return: MarshalAs(UnmanagedType.I1)] public static extern bool SetWiFiVideoRes(
        int width, int height);
    [DllImport(Dll)] [return: MarshalAs(UnmanagedType.I1)] public static extern bool GetWiFiVideoCaps(
        out int count, [Out] short[] width, [Out] short[] height);
}
