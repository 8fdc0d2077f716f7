"""The 37 functions of QVX64.dll. microscope.py shows how they are called.

`long` has 32 bits in the library, as c_long has on Windows. Texts come back as str and bytes.
"""

from ctypes import (CFUNCTYPE, POINTER, WinDLL, c_bool, c_char_p, c_double, c_int, c_long, c_short,
                    c_wchar_p)
from pathlib import Path

QVX_CHOOSE = -1
QVX_WIFI_CAMERA = 90
QVX_FEATURE_LIGHTING_BOARD = 0x01
QVX_FEATURE_7XXX = 0x02
QVX_FEATURE_LIGHTS_2 = 0x04
QVX_FEATURE_LIGHTS_3 = 0x08
QVX_FEATURE_AIMING_LIGHT = 0x10
QVX_FEATURE_QUADRANTS = 0x20
QVX_FEATURE_MAGNIFICATION = 0x40
QVX_FEATURE_LENS = 0x80
QVX_EXPOSURE_MIN = 0
QVX_EXPOSURE_MAX = 65535
QVX_FLICKER_DETECT = 0
QVX_FLICKER_60_HZ = 1
QVX_FLICKER_50_HZ = 2
QVX_BRIGHTNESS = 0
QVX_CONTRAST = 1
QVX_HUE = 2
QVX_SATURATION = 3
QVX_SHARPNESS = 4
QVX_GAMMA = 5
QVX_COLOR_ENABLE = 6
QVX_WHITE_BALANCE = 7
QVX_BACKLIGHT_COMPENSATION = 8
QVX_GAIN = 9
QVX_POWER_LINE_FREQUENCY = 13
QVX_LED_OFF = 0
QVX_LED_ON = 1
QVX_LED_OTHER = 2
QVX_SEGMENT_1 = 1
QVX_SEGMENT_2 = 2
QVX_SEGMENT_3 = 4
QVX_SEGMENT_4 = 8
QVX_RING_ON = 15
QVX_RING_OFF = 16
QVX_AXIAL_ON = 24
QVX_AXIAL_OFF = 32
QVX_AIM_ON = 40
QVX_AIM_OFF = 48
QVX_LEVEL_OFF = 0
QVX_LEVEL_FULL = 6
QVX_QUADRANT_LEVEL_FULL = 31

# Keep the object that the library was given in a variable, or the garbage collector takes it.
ButtonHandler = CFUNCTYPE(None)

# Result first, then the parameters.
SIGNATURES = {
    "Init": (c_int,),
    "GetVideoDeviceCount": (c_int,),
    "GetVideoDeviceIndex": (c_int,),
    "SetVideoDeviceIndex": (None, c_int),
    "GetVideoDeviceName": (c_wchar_p, c_int),
    "GetDeviceId": (c_wchar_p, c_int),
    "GetDeviceIDA": (c_char_p, c_int),
    "GetConfig": (c_long, c_int),
    "SetEventCallback": (None, ButtonHandler),
    "FireEvent": (None,),
    "EnablePressKey": (c_int, c_int),
    "GetMAG": (c_double, c_int),
    "FOVx": (c_double, c_int, c_double),
    "SetLensInitPos": (None, c_int),
    "SetLensPos": (None, c_int, c_long),
    "SetLensFinePos": (None, c_int, c_long),
    "GetLensPosLimits": (c_long, c_int, POINTER(c_long), POINTER(c_long)),
    "GetLensFinePosLimits": (c_long, c_int, POINTER(c_long), POINTER(c_long)),
    "SetExposureValue": (None, c_int, c_long),
    "GetExposureValue": (c_long, c_int),
    "SetAETarget": (None, c_int, c_long),
    "GetAETarget": (c_long, c_int),
    "SetAutoExposure": (None, c_int, c_long),
    "GetAutoExposure": (c_long, c_int),
    "SetFlicker": (None, c_int, c_long),
    "SetVideoProcAmp": (None, c_int, c_long),
    "GetVideoProcAmp": (c_long, c_int),
    "GetVideoProcAmpValueRange": (
        c_long, POINTER(c_long), POINTER(c_long), POINTER(c_long), POINTER(c_long),
        POINTER(c_long)),
    "SetLEDState": (None, c_int, c_int),
    "SetSEGSwitch": (None, c_int, c_long),
    "SetSEGLevel": (None, c_int, c_long),
    "SetESEG": (None, c_int, c_long, c_long),
    "SetAXILevel": (None, c_int, c_long),
    "SetAimpointLevel": (None, c_int, c_long),
    "GetWiFiImage": (c_bool, c_char_p),
    "SetWiFiVideoRes": (c_bool, c_long, c_long),
    "GetWiFiVideoCaps": (c_bool, POINTER(c_long), POINTER(c_short), POINTER(c_short)),
}


def load(path=Path(__file__).with_name("QVX64.dll")):
    """The library, its functions with the types of api.h."""
    library = WinDLL(str(path))
    for name, (result, *parameters) in SIGNATURES.items():
        function = getattr(library, name)
        function.restype, function.argtypes = result, parameters
    return library
