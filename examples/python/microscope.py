"""A camera on a thread of its own: microscope.py [seconds [still.jpg]]"""

import ctypes
import queue
import sys
import threading
import time
from concurrent.futures import Future
from ctypes import wintypes

import qvx64

WM_QUIT, WM_APP = 0x12, 0x8000
user32 = ctypes.WinDLL("user32")


class CameraThread(threading.Thread):
    """The one thread that calls the library, whose timers run from this thread's message loop.

    Puts into `events` what happens: ("magnification", x, field of view in mm) and ("button",).
    """

    def __init__(self, device):
        super().__init__(name="camera")
        self.events = queue.Queue()
        self._device = device
        self._library = qvx64.load()
        self._requests = queue.SimpleQueue()
        self._opened = Future()

    def open(self):
        """False when there is no camera."""
        self.start()
        return self._opened.result()

    def ask(self, function):
        """Calls function(library) on the camera's thread; returns what it returns."""
        result = Future()
        self._requests.put((function, result))
        user32.PostThreadMessageW(self.native_id, WM_APP, 0, 0)
        return result.result()

    def close(self):
        user32.PostThreadMessageW(self.native_id, WM_QUIT, 0, 0)
        self.join()

    def run(self):
        # From here on others can post to this thread.
        user32.PeekMessageW(ctypes.byref(wintypes.MSG()), None, 0, 0, 0)
        self._library.SetVideoDeviceIndex(self._device)
        found = self._library.Init() != 0
        # In a variable as long as the library has it: its pointer does not keep it alive.
        button_handler = qvx64.ButtonHandler(lambda: self.events.put(("button",)))
        if found:
            self._library.SetEventCallback(button_handler)
            self._library.EnablePressKey(1)  # after Init, which may switch it off
        self._opened.set_result(found)
        if found:
            self._dispatch_messages()
            # The library keeps the callback: take it back before what it calls is gone.
            self._library.EnablePressKey(0)
            self._library.SetEventCallback(qvx64.ButtonHandler())

    def _dispatch_messages(self):
        message, shown = wintypes.MSG(), 0
        while user32.GetMessageW(ctypes.byref(message), None, 0, 0) > 0:
            user32.DispatchMessageW(ctypes.byref(message))  # the library's timers run here
            while not self._requests.empty():
                self._answer(*self._requests.get())
            magnification = self._library.GetMAG(self._device)
            if magnification != shown:
                shown = magnification
                width_mm = self._library.FOVx(self._device, magnification) / 1000
                self.events.put(("magnification", magnification, width_mm))

    def _answer(self, function, result):
        try:
            result.set_result(function(self._library))
        except Exception as error:
            result.set_exception(error)


def main(seconds="5", still="still.jpg"):
    camera = CameraThread(qvx64.QVX_WIFI_CAMERA)
    if not camera.open():
        sys.exit("no camera")
    camera.ask(lambda library: library.SetLEDState(qvx64.QVX_WIFI_CAMERA, qvx64.QVX_LED_ON))
    saved = camera.ask(lambda library: library.GetWiFiImage(still.encode("latin-1")))
    print("still in" if saved else "cannot write", still)
    end = time.monotonic() + float(seconds)
    while (left_s := end - time.monotonic()) > 0:
        try:
            event = camera.events.get(timeout=left_s)
        except queue.Empty:
            break
        if event[0] == "button":
            print("button", flush=True)
        else:
            print("magnification {:.2f}, field of view {:.3f} mm".format(*event[1:]), flush=True)
    camera.close()
    return 0 if saved else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
