"""What answers in place of a bench: one with news, one without a signal, and no bench at all."""

from __future__ import annotations

import socket
import struct
import threading
from typing import Iterator

import numpy as np
import pytest

import notchbench

GREETING = struct.pack("<IfIfIf", 3, 1.0, 1, 4.0, 0, 1e6)
IDENTITY = struct.pack("<I96s", 4, b"Noise Power Ratio")


class Peer:
    """Greets the first client and gives each of its requests the next answer, in pieces."""

    def __init__(self, greeting: bytes, answers: list[tuple[bytes, list[bytes]]]) -> None:
        self._listener = socket.create_server(("localhost", 0))
        self.port: int = self._listener.getsockname()[1]
        self.asked: list[bytes] = []
        self._thread = threading.Thread(target=self._serve, args=(greeting, answers))
        self._thread.start()

    def _serve(self, greeting: bytes, answers: list[tuple[bytes, list[bytes]]]) -> None:
        client, _ = self._listener.accept()
        with client:
            client.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            client.sendall(greeting)
            for request, pieces in answers:
                self.asked.append(client.recv(len(request), socket.MSG_WAITALL))
                for piece in pieces:
                    client.sendall(piece)

    def end(self) -> None:
        """Wait for the end, which comes with the last answer."""
        self._thread.join()
        self._listener.close()


@pytest.fixture
def peers() -> Iterator[list[Peer]]:
    """Those that a test makes are ended."""
    made: list[Peer] = []
    yield made
    for peer in made:
        peer.end()


def fetch(peers: list[Peer], greeting: bytes, *answers: tuple[bytes, list[bytes]]) -> Peer:
    peers.append(Peer(greeting, list(answers)))
    notchbench.fetch_signal(port=peers[0].port)
    return peers[0]


RATE = (b"GetSymbolRate", [struct.pack("<If", 0, 1e6)])


def test_news_bring_the_signal(peers: list[Peer]) -> None:
    values = np.arange(8, dtype="<f4")
    records = struct.pack("<IfIf", 3, 1.0, 0, 2e6) + struct.pack("<If", 1, 4.0)
    block = struct.pack("<I", 2) + values.tobytes()
    peers.append(
        Peer(
            GREETING,
            [
                (b"GetNewState", [records[:5], records[5:] + block[:9], block[9:]]),
                (b"GetServerID", [IDENTITY[:50], IDENTITY[50:]]),
                (b"GetNewState", [struct.pack("<If", 3, 0.0)]),
            ],
        )
    )
    with notchbench.Bench(port=peers[0].port) as bench:
        news = bench.new_signal()
        assert news is not None and news.sample_rate == 2e6
        assert np.array_equal(news.samples, [0 + 1j, 2 + 3j, 4 + 5j, 6 + 7j])
        assert bench.new_signal() is None
    assert peers[0].asked == [b"GetNewState", b"GetServerID", b"GetNewState"]


def test_a_bench_without_a_signal_is_told(peers: list[Peer]) -> None:
    with pytest.raises(notchbench.BenchError, match="has no signal"):
        fetch(
            peers,
            GREETING,
            RATE,
            (b"GetSymbol", [struct.pack("<I", 2)]),
            (b"GetServerID", [IDENTITY]),
        )


def test_another_program_is_no_bench(peers: list[Peer]) -> None:
    with pytest.raises(notchbench.BenchError, match="no bench"):
        fetch(peers, b"220 mail.example.com ready\r\n")


def test_half_a_sample_is_no_bench(peers: list[Peer]) -> None:
    with pytest.raises(notchbench.BenchError, match="half a sample"):
        fetch(
            peers,
            GREETING,
            RATE,
            (b"GetSymbol", [struct.pack("<If", 2, 1.0)]),
            (b"GetServerID", [IDENTITY]),
        )


@pytest.mark.parametrize("answers", [[], [RATE], [RATE, (b"GetSymbol", [b"\2\0\0\0abc"])]])
def test_an_end_in_between_is_told(
    peers: list[Peer], answers: list[tuple[bytes, list[bytes]]]
) -> None:
    with pytest.raises((notchbench.BenchError, ConnectionError)):
        fetch(peers, GREETING, *answers)


def test_silence_ends_after_the_timeout() -> None:
    with socket.create_server(("localhost", 0)) as listener:
        with pytest.raises(OSError, match="timed out"):
            notchbench.fetch_signal(port=listener.getsockname()[1], timeout=0.05)


def test_nobody_there_is_an_error_of_the_system() -> None:
    with socket.create_server(("localhost", 0)) as listener:
        free = listener.getsockname()[1]
    with pytest.raises(ConnectionRefusedError):
        notchbench.fetch_signal(port=free)
