"""The shared library through ctypes: finding it, its functions, its records.

Every record the library may grow is made here, read back into numpy and
given back to the library before the call returns, so nothing leaks.
"""
import ctypes
import ctypes.util
import os
from pathlib import Path

import numpy as np

LIBRARY_NAME = "libQuentDGtrendFittingEngine.so.0"
ENVIRONMENT_VARIABLE = "QUENT_DGTREND_LIBRARY"

real_p = ctypes.POINTER(ctypes.c_double)
int_p = ctypes.POINTER(ctypes.c_int32)


class _Record(ctypes.Structure):
    """The library's array record (RealArray or Int32Array)."""


class RealArray(_Record):
    _fields_ = [("data", real_p), ("size", int_p), ("allocatedSize", ctypes.c_int32),
                ("numDimensions", ctypes.c_int32), ("canFreeData", ctypes.c_bool)]


class Int32Array(_Record):
    _fields_ = [("data", int_p), ("size", int_p), ("allocatedSize", ctypes.c_int32),
                ("numDimensions", ctypes.c_int32), ("canFreeData", ctypes.c_bool)]


class LibraryNotFound(OSError):
    """No copy of the library could be loaded; the message names every path tried."""


def _candidates():
    """Where the library may be, in the order it is looked for."""
    here = Path(__file__).resolve().parent
    found = []
    if os.environ.get(ENVIRONMENT_VARIABLE):
        found.append(os.environ[ENVIRONMENT_VARIABLE])
    found.append(str(here / LIBRARY_NAME))                       # next to the package
    found.append(str(here.parent.parent / "build" / LIBRARY_NAME))  # the project's build
    found.append(ctypes.util.find_library("QuentDGtrendFittingEngine") or LIBRARY_NAME)
    return found


def _load():
    tried = []
    for path in _candidates():
        try:
            return ctypes.CDLL(path)
        except OSError as error:
            tried.append(f"  {path}: {error}")
    raise LibraryNotFound(
        "the QuentDGtrendFittingEngine library could not be loaded; build it "
        f"(tools/run-example.sh) or set {ENVIRONMENT_VARIABLE}. Tried:\n" + "\n".join(tried))


def _declare(lib):
    vec = [real_p, int_p]
    signatures = {
        "QUENT_emxCreateWrapper_real_T": ([real_p, ctypes.c_int32, ctypes.c_int32],
                                          ctypes.POINTER(RealArray)),
        "QUENT_emxCreateWrapper_int32_T": ([int_p, ctypes.c_int32, ctypes.c_int32],
                                           ctypes.POINTER(Int32Array)),
        "QUENT_emxDestroyArray_real_T": ([ctypes.POINTER(RealArray)], None),
        "QUENT_emxDestroyArray_int32_T": ([ctypes.POINTER(Int32Array)], None),
        "QUENT_dGtrend_primaryFit": ([ctypes.c_int32] + vec * 3 + [ctypes.c_int32, ctypes.c_double,
                                     ctypes.POINTER(RealArray), ctypes.POINTER(Int32Array)], None),
        "QUENT_dGtrend_user_primaryFit": ([ctypes.c_int32] + vec * 3 + [int_p, int_p] * 2 +
                                          [ctypes.c_int32, ctypes.c_double,
                                           ctypes.POINTER(RealArray)], None),
        "QUENT_dGtrend_calc": (vec * 2 + [int_p, int_p, ctypes.c_int32] +
                               [ctypes.POINTER(RealArray)] * 3 +
                               [ctypes.POINTER(Int32Array), real_p], None),
        "QUENT_dGtrend_normalization": (vec + [ctypes.c_double, ctypes.c_double, real_p, int_p],
                                        None),
        "QUENT_dGtrend_trend": (vec + [real_p, ctypes.c_int32] + [ctypes.POINTER(RealArray)] * 2,
                                None),
        "QUENT_dGtrend_evaluateRow": ([real_p, ctypes.c_int32, real_p, ctypes.c_int32, real_p,
                                       real_p], None),
        "QUENT_dGtrend_codeText": ([real_p, ctypes.c_int32], ctypes.c_char_p),
        "QUENT_dGtrend_version": ([], ctypes.c_char_p),
    }
    for name in ("QUENT_dGtrend_fd", "QUENT_dGtrend_fragg", "QUENT_dGtrend_fraggfd"):
        signatures[name] = (vec + [real_p, ctypes.c_int32, ctypes.c_double] +
                            [ctypes.POINTER(RealArray)] * 2, None)
    for name, (arguments, result) in signatures.items():
        function = getattr(lib, name)
        function.argtypes = arguments
        function.restype = result
    return lib


_lib = None


def library():
    """The loaded library, loaded on first use."""
    global _lib
    if _lib is None:
        _lib = _declare(_load())
    return _lib


def real_vector(values):
    """A contiguous float64 copy and its {1, n} size pair."""
    array = np.ascontiguousarray(values, dtype=np.float64).ravel()
    size = (ctypes.c_int32 * 2)(1, array.size)
    return array, array.ctypes.data_as(real_p), size


def int_vector(values):
    array = np.ascontiguousarray(values, dtype=np.int32).ravel()
    size = (ctypes.c_int32 * 2)(1, array.size)
    return array, array.ctypes.data_as(int_p), size


class Outputs:
    """Empty records for one call, read back and given back on exit."""

    def __init__(self, real=0, integer=0):
        lib = library()
        self.real = [lib.QUENT_emxCreateWrapper_real_T(None, 1, 0) for _ in range(real)]
        self.integer = [lib.QUENT_emxCreateWrapper_int32_T(None, 1, 0) for _ in range(integer)]
        if not all(self.real) or not all(self.integer):
            self.__exit__(None, None, None)
            raise MemoryError("the library could not make its output records")

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        lib = library()
        for record in self.real:
            if record:
                lib.QUENT_emxDestroyArray_real_T(record)
        for record in self.integer:
            if record:
                lib.QUENT_emxDestroyArray_int32_T(record)
        self.real, self.integer = [], []
        return False

    @staticmethod
    def read(record):
        """A numpy copy of the record's live elements, read through the record."""
        r = record.contents
        count = r.size[0] * r.size[1]
        if count <= 0:
            dtype = np.float64 if isinstance(r, RealArray) else np.int32
            return np.zeros(0, dtype=dtype)
        return np.ctypeslib.as_array(r.data, shape=(count,)).copy()
