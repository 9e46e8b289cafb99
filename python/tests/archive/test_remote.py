"""Recordings behind an HTTP server with ranges and in an object store: what is fetched of them, and
what happens when a connection is lost."""
import asyncio
import struct
import threading

import fsspec.config
import numpy as np
import pytest

import corvantis
import corvantis.archive
from corvantis.archive import locations
from corvantis.interface import EPOCH_HEADER, FILE_HEADER
from corvantis.records import fields_of

web = pytest.importorskip("aiohttp.web")
MOST = 256 * 1024       # that may be fetched besides an epoch [bytes]
HEADER, EPOCH, PULSE = 580, 912, 32


class Server:
    """aiohttp's own file server on a folder; counts what it sends, and drops connections."""

    def __init__(self, folder):
        self.sent = self.requests = self.dropped = 0
        self.drops = lambda number: False
        self._app = web.Application(middlewares=[self._middleware()])
        self._app.on_response_prepare.append(self._count)
        self._app.router.add_static("/", folder, show_index=True)
        self._loop = asyncio.new_event_loop()
        self._runner = web.AppRunner(self._app)
        self._loop.run_until_complete(self._runner.setup())
        site = web.TCPSite(self._runner, "127.0.0.1", 0)
        self._loop.run_until_complete(site.start())
        self.url = f"http://127.0.0.1:{self._runner.addresses[0][1]}"
        self._thread = threading.Thread(target=self._loop.run_forever, daemon=True)
        self._thread.start()

    def _middleware(self):
        @web.middleware
        async def serve(request, handler):
            self.requests += 1
            if self.drops(self.requests):
                self.dropped += 1
                request.transport.abort()
            return await handler(request)
        return serve

    async def _count(self, request, response):
        self.sent += (response.content_length or 0) if request.method == "GET" else 0

    def close(self):
        asyncio.run_coroutine_threadsafe(self._runner.cleanup(), self._loop).result()
        self._loop.call_soon_threadsafe(self._loop.stop)
        self._thread.join()


@pytest.fixture
def server(tmp_path):
    """serve(folder) gives a server; all are closed in the end."""
    servers = []

    def serve(folder):
        servers.append(Server(folder))
        return servers[-1]
    yield serve
    for each in servers:
        each.close()


def with_field(record, block, name, value):
    place = fields_of(record)[name].place
    return block[:place] + struct.pack(">i", value) + block[place + 4:]


def write_gibibyte(path, recorded, has_table):
    """A sparse recording: 15 epochs of 34,000,000 points, and behind each a short one."""
    data = recorded("steps").read_bytes()
    short = data[HEADER:HEADER + EPOCH + PULSE + 2 * 4000]
    long_header = with_field(EPOCH_HEADER, short[:EPOCH + PULSE], "epochPoints", 34_000_000)
    starts, place = [], HEADER
    with open(path, "wb") as file:
        for _ in range(15):
            for block, size in ((long_header, EPOCH + PULSE + 68_000_000), (short, len(short))):
                starts.append(place)
                file.seek(place)
                file.write(block)
                place += size
        file.seek(place)
        file.write(struct.pack(f">{len(starts)}I", *starts) if has_table else b"")
        header = with_field(FILE_HEADER, data[:HEADER], "numEpochs", len(starts))
        file.seek(0)
        file.write(with_field(FILE_HEADER, header, "epochTablePosition", place))
    return starts


def test_little_more_than_an_epoch_is_fetched(recorded, tmp_path, server):
    folder = tmp_path / "big"
    folder.mkdir()
    expected = corvantis.open(recorded("steps")).epochs[0]
    for name, has_table in (("sound.dat", True), ("cut.dat", False)):
        starts = write_gibibyte(folder / name, recorded, has_table)
    assert (folder / "cut.dat").stat().st_size > 1_000_000_000
    corvantis.archive.index(folder, tmp_path / "c", processes=1, digest=False)
    remote = server(folder)
    catalogue = corvantis.archive.open(tmp_path / "c", root=remote.url)
    for name in ("sound.dat", "cut.dat"):
        before = remote.sent
        epoch = catalogue.epoch(name, 17)
        np.testing.assert_array_equal(epoch.raw, expected.raw)
        np.testing.assert_array_equal(epoch.stimulus, expected.stimulus)
        assert epoch._info.start == starts[17]
        assert 0 < remote.sent - before < MOST
    before = remote.sent
    with corvantis.open(corvantis.archive.open_ranges(f"{remote.url}/sound.dat")) as recording:
        np.testing.assert_array_equal(recording.epochs[29].raw, expected.raw)
    assert 0 < remote.sent - before < MOST


def test_lost_connections_are_tried_again_and_named(recorded, tmp_path, server, monkeypatch):
    monkeypatch.setattr(locations, "PAUSE", 0.001)
    remote = server(recorded("steps").parent)
    url = f"{remote.url}/steps.dat"
    remote.drops = lambda number: number % 3 == 0
    with corvantis.open(corvantis.archive.open_ranges(url)) as recording:
        np.testing.assert_array_equal(recording.epochs[2].raw,
                                      corvantis.open(recorded("steps")).epochs[2].raw)
        assert remote.dropped > 0
        remote.drops = lambda number: True
        with pytest.raises(corvantis.CorvantisError, match="steps.dat") as error:
            recording._file._blocks.clear()
            recording.epochs[1].raw
    assert error.value.code == 7
    assert "steps.dat: bytes 0 to 16384: tried 4 times: " in str(error.value.__cause__)


@pytest.fixture
def bucket(archive, monkeypatch):
    """The archive in an object store; the URL."""
    moto = pytest.importorskip("moto.server")
    store = moto.ThreadedMotoServer(port=0, verbose=False)
    store.start()
    host, port = store.get_host_and_port()
    for name, value in (("AWS_ACCESS_KEY_ID", "none"), ("AWS_SECRET_ACCESS_KEY", "none"),
                        ("FSSPEC_S3_ENDPOINT_URL", f"http://{host}:{port}")):
        monkeypatch.setenv(name, value)
    fsspec.config.set_conf_env(fsspec.config.conf)
    system = fsspec.filesystem("s3")
    system.mkdir("lab")
    system.put(str(archive), "lab/archive", recursive=True)
    yield "s3://lab/archive"
    store.stop()
    fsspec.config.conf.pop("s3")


def test_an_archive_behind_a_url_is_indexed_too(archive, bucket, tmp_path, server):
    def indexed(root, name):
        """Rows of the files in `day`."""
        assert corvantis.archive.index(root, tmp_path / name, processes=1).read in (3, 4)
        assert corvantis.archive.index(root, tmp_path / name, processes=1).read == 0
        catalogue = corvantis.archive.open(tmp_path / name)
        return catalogue, catalogue.table(
            "SELECT replace(file, 'day/', '') AS name, epoch, start, digest, stimulusJson "
            "FROM epochs WHERE file <> 'damaged.dat' ORDER BY name, epoch")
    wanted = indexed(archive, "local")[1]
    stored, rows = indexed(bucket, "stored")
    assert rows.equals(wanted)
    served, rows = indexed(f"{server(archive).url}/day", "served")
    assert rows.equals(wanted)
    raw = corvantis.open(archive / "day/steps.dat").epochs[1].raw
    np.testing.assert_array_equal(stored.epoch("day/steps.dat", 1).raw, raw)
    np.testing.assert_array_equal(served.epoch("steps.dat", 1).raw, raw)
