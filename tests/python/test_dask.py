"""The same sets fitted on a local Dask cluster give the serial results."""
from pathlib import Path

import pytest

import quent_dgtrend as qd

distributed = pytest.importorskip("distributed")
DATA = Path(__file__).resolve().parents[2] / "examples" / "data"


def test_sets_on_a_local_dask_cluster_equal_the_serial_fit():
    sets = [(name, qd.read_curves(DATA / name)) for name in ("plate.csv", "plate2.csv")]
    options = qd.Options(states=3)
    serial = qd.fit_sets(sets, options)
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster, \
            distributed.Client(cluster) as client:
        clustered = qd.fit_sets(sets, options, executor=client.get_executor())
    for a, b in zip(serial, clustered):
        assert a.notices == b.notices and a.lines == b.lines and a.table.equals(b.table)
