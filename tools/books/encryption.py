"""Encrypts a package with the standard library alone: agile encryption of Office documents
([MS-OFFCRYPTO]) with AES-256 and SHA-512, in a compound file ([MS-CFB]). Salts and keys are made
from a seed, so the same arguments give the same bytes: for examples, not for secrets."""

import base64
import hashlib
import hmac
import struct

SEGMENT = 4096
ROUNDS = 100_000
PURPOSE = {name: bytes.fromhex(digits) for name, digits in (
    ("verifier", "fea7d2763b4b9e79"), ("verifier hash", "d7aa0f6d3061344e"),
    ("key", "146e0be7abacd0d6"), ("mac key", "5fb2ad010cb9e1f6"), ("mac", "a0677f02b22c8433"))}


def _double(byte):
    return (byte << 1 ^ (0x11B if byte & 0x80 else 0)) & 0xFF


def _substitutions():
    box, p, q = [0x63] * 256, 1, 1
    while True:
        p ^= _double(p)                      # p runs through all bytes, q through their inverses
        for shift in (1, 2, 4):
            q ^= q << shift & 0xFF
        if q & 0x80:
            q ^= 0x09
        turned = q
        for shift in (1, 2, 3, 4):
            turned ^= (q << shift | q >> (8 - shift)) & 0xFF
        box[p] = turned ^ 0x63
        if p == 1:
            return box


BOX = _substitutions()


class Aes256:
    """Encryption of blocks of 16 bytes (FIPS 197)."""

    def __init__(self, key):
        words, step = [key[i:i + 4] for i in range(0, 32, 4)], 1
        for i in range(8, 60):
            word = words[-1]
            if i % 8 == 0:
                word = bytes(BOX[b] for b in word[1:] + word[:1])
                word = bytes([word[0] ^ step]) + word[1:]
                step = _double(step)
            elif i % 8 == 4:
                word = bytes(BOX[b] for b in word)
            words.append(bytes(a ^ b for a, b in zip(words[i - 8], word)))
        self._keys = [b"".join(words[i:i + 4]) for i in range(0, 60, 4)]

    def _block(self, block):
        state = [a ^ b for a, b in zip(block, self._keys[0])]
        for number, key in enumerate(self._keys[1:], 1):
            state = [BOX[state[(i + 4 * (i % 4)) % 16]] for i in range(16)]
            if number < len(self._keys) - 1:
                mixed = []
                for column in range(0, 16, 4):
                    c = state[column:column + 4]
                    every = c[0] ^ c[1] ^ c[2] ^ c[3]
                    mixed += [c[i] ^ every ^ _double(c[i] ^ c[(i + 1) % 4]) for i in range(4)]
                state = mixed
            state = [a ^ b for a, b in zip(state, key)]
        return bytes(state)

    def cbc(self, vector, data):
        data += bytes(-len(data) % 16)
        out = b""
        for at in range(0, len(data), 16):
            vector = self._block(bytes(a ^ b for a, b in zip(data[at:at + 16], vector)))
            out += vector
        return out


def _sha512(*parts):
    return hashlib.sha512(b"".join(parts)).digest()


def _compound_file(streams):
    """Streams of 4,096 bytes and more, each in its own chain of sectors of 512 bytes."""
    end, free, table_mark = 0xFFFFFFFE, 0xFFFFFFFF, 0xFFFFFFFD
    sectors, chain, entries = b"", [], []

    def add(content):
        nonlocal sectors
        first, count = len(chain), -(-len(content) // 512)
        chain.extend([*range(first + 1, first + count), end])
        sectors += content + bytes(-len(content) % 512)
        return first

    def entry(name, kind, right, child, start, size):
        text = (name + "\0").encode("utf-16-le") if name else b""
        return (text.ljust(64, b"\0") + struct.pack("<HBBIII", len(text), kind, 1, free, right, child)
                + bytes(36) + struct.pack("<IQ", start, size))

    for n, (name, content) in enumerate(streams, 2):
        content = content.ljust(4096, b"\0")
        right = n if n <= len(streams) else free
        entries.append(entry(name, 2, right, free, add(content), len(content)))
    entries.insert(0, entry("Root Entry", 5, free, 1, end, 0))
    directory = add(b"".join(entries).ljust(512, b"\0"))
    tables = 1
    while len(chain) + tables > tables * 128:
        tables += 1
    first_table = len(chain)
    chain.extend([table_mark] * tables)
    chain.extend([free] * (tables * 128 - len(chain)))
    header = (bytes.fromhex("d0cf11e0a1b11ae1") + bytes(16)
              + struct.pack("<HHHHH6xIIIIIIIIII", 0x3E, 3, 0xFFFE, 9, 6, 0, tables, directory, 0,
                            4096, end, 0, end, 0, first_table))
    header += b"".join(struct.pack("<I", first_table + n if n < tables else free)
                       for n in range(1, 109))
    return header + sectors + b"".join(struct.pack("<I", n) for n in chain)


def encrypt(package, password, seed):
    """The bytes of the encrypted file."""
    def make(what, size):
        return hashlib.sha512(f"{seed} {what}".encode()).digest()[:size]

    salt, data_salt, key = make("salt", 16), make("data salt", 16), make("key", 32)
    verifier, mac_key = make("verifier", 16), make("mac key", 64)
    spun = _sha512(salt, password.encode("utf-16-le"))
    for n in range(ROUNDS):
        spun = _sha512(struct.pack("<I", n), spun)

    def by_password(purpose, value):
        derived = _sha512(spun, PURPOSE[purpose])[:32]
        return base64.b64encode(Aes256(derived).cbc(salt, value)).decode()

    aes = Aes256(key)

    def by_key(block, value):
        return aes.cbc(_sha512(data_salt, block)[:16], value)

    stream = struct.pack("<Q", len(package)) + b"".join(
        by_key(struct.pack("<I", at // SEGMENT), package[at:at + SEGMENT])
        for at in range(0, len(package), SEGMENT))
    mac = hmac.new(mac_key, stream.ljust(4096, b"\0"), hashlib.sha512).digest()
    sizes = ('saltSize="16" blockSize="16" keyBits="256" hashSize="64" cipherAlgorithm="AES" '
             'cipherChaining="ChainingModeCBC" hashAlgorithm="SHA512"')
    space = "http://schemas.microsoft.com/office/2006/"
    info = struct.pack("<HHI", 4, 4, 0x40) + (
        '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\r\n'
        f'<encryption xmlns="{space}encryption" xmlns:p="{space}keyEncryptor/password">'
        f'<keyData {sizes} saltValue="{base64.b64encode(data_salt).decode()}"/>'
        f'<dataIntegrity encryptedHmacKey="{base64.b64encode(by_key(PURPOSE["mac key"], mac_key)).decode()}"'
        f' encryptedHmacValue="{base64.b64encode(by_key(PURPOSE["mac"], mac)).decode()}"/>'
        f'<keyEncryptors><keyEncryptor uri="{space}keyEncryptor/password">'
        f'<p:encryptedKey spinCount="{ROUNDS}" {sizes} '
        f'saltValue="{base64.b64encode(salt).decode()}" '
        f'encryptedVerifierHashInput="{by_password("verifier", verifier)}" '
        f'encryptedVerifierHashValue="{by_password("verifier hash", _sha512(verifier))}" '
        f'encryptedKeyValue="{by_password("key", key)}"/>'
        "</keyEncryptor></keyEncryptors></encryption>").encode()
    # Filled up with blanks, which XML allows, to the length that needs no small sectors.
    return _compound_file([("EncryptionInfo", info.ljust(4096, b" ")), ("EncryptedPackage", stream)])
